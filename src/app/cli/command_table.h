#pragma once

#include <QList>
#include <QString>

#include "app/cli/command_line.h"

// The table of tidewick-cli's commands, from which dispatch and help are made.
namespace tidewick::cli {

/// Every command, in the order the help lists them.
const QList<Command>& commands();
/// The command called `name`; nullptr for none.
const Command* findCommand(const QString& name);
/// The text of `tidewick-cli help`: the synopsis of each command and what it does.
QString overviewHelp();

}  // namespace tidewick::cli
