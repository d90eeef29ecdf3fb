#pragma once

#include <QByteArray>
#include <QByteArrayView>
#include <memory>

// The unpacking of a gzip stream (an Ableton Live set) by zlib, a piece at a time, so that a
// reader never holds the unpacked whole.
namespace tidewick {

/// Whether `bytes` begin as a gzip stream does.
bool isGzip(QByteArrayView bytes);

/// Hands out the unpacked bytes of one gzip stream piece by piece. A stream that is cut short,
/// or whose data or check sum is damaged, ends with damaged() true.
class GunzipPieces {
public:
    explicit GunzipPieces(QByteArrayView packed);
    ~GunzipPieces();
    GunzipPieces(const GunzipPieces&) = delete;
    GunzipPieces& operator=(const GunzipPieces&) = delete;

    /// The next piece of unpacked bytes, valid until the next call; empty once the stream has
    /// ended, whole or damaged.
    QByteArrayView next();
    /// True once the stream ended before its end, or with bytes zlib refused.
    bool damaged() const { return damaged_; }

private:
    struct Stream;
    std::unique_ptr<Stream> stream_;
    QByteArray piece_;
    bool ended_ = false;
    bool damaged_ = false;
};

}  // namespace tidewick
