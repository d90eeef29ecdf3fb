#pragma once

#include <QString>
#include <optional>
#include <utility>
#include <variant>

// The one way an operation that can fail says how it went: a value, or an error whose cause a
// user can read.
namespace tidewick {

/// Why an operation failed: the system's error number where the system gave one (0 where the
/// failure is Tidewick's own finding), and the cause in words ("No such file or directory").
struct Error {
    int code = 0;
    QString cause;
    bool operator==(const Error&) const = default;
};

/// The error as the logs show it: "2 (No such file or directory)".
inline QString errorText(const Error& error) {
    return QString::number(error.code) + QStringLiteral(" (") + error.cause + u')';
}

/// A value of `T`, or the error that kept the operation from making one.
template <typename T = void>
class [[nodiscard]] Result {
public:
    Result(T value) : state_(std::in_place_index<0>, std::move(value)) {}
    Result(Error error) : state_(std::in_place_index<1>, std::move(error)) {}

    bool ok() const { return state_.index() == 0; }
    explicit operator bool() const { return ok(); }

    const T& value() const& { return std::get<0>(state_); }
    T& value() & { return std::get<0>(state_); }
    T&& value() && { return std::get<0>(std::move(state_)); }
    const T& operator*() const& { return value(); }
    T& operator*() & { return value(); }
    const T* operator->() const { return &value(); }
    T* operator->() { return &value(); }
    /// The value, or `fallback` after a failure.
    T valueOr(T fallback) const& { return ok() ? value() : std::move(fallback); }

    /// The error; only after a failure.
    const Error& error() const { return std::get<1>(state_); }

private:
    std::variant<T, Error> state_;
};

/// An operation that gives nothing back but can fail.
template <>
class [[nodiscard]] Result<void> {
public:
    Result() = default;
    Result(Error error) : error_(std::move(error)) {}

    bool ok() const { return !error_.has_value(); }
    explicit operator bool() const { return ok(); }
    /// The error; only after a failure.
    const Error& error() const { return *error_; }

private:
    std::optional<Error> error_;
};

}  // namespace tidewick
