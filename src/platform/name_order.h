#pragma once

#include <QString>
#include <functional>
#include <string_view>
#include <vector>

// The order in which the folder lists show names.
namespace tidewick {

/// The positions of `count` names (the name at a position given by `nameAt`) sorted by name
/// ignoring case: by the names lower-cased, as UTF-16 code units compare, and names that differ
/// only in letter case by the names themselves.
std::vector<qsizetype> orderByName(qsizetype count,
                                   const std::function<const QString&(qsizetype)>& nameAt);

/// The same order of `count` names that are ASCII bytes (every byte below 0x80), such as a
/// folder's names as the system lists them, before any is made a QString.
std::vector<qsizetype> orderByAsciiName(qsizetype count,
                                        const std::function<std::string_view(qsizetype)>& nameAt);

}  // namespace tidewick
