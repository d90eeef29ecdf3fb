#pragma once

#include <QString>

#include "platform/interaction.h"
#include "readers/reader_contract.h"

// What the core reports, in the words the window and the command line show.
namespace tidewick {

/// The words of a reader's problem: "This is not a Vegas project file.", "An error occurred
/// accessing the selected RPP file.  ..." and the like.
QString readProblemText(const ReadProblem& problem);

/// The message box that tells of a reader's problem: its words, the title of its kind and
/// failure ("Processing RPP File", "File Error"), the icon of its severity, and OK.
MessageBoxRequest readProblemMessage(const ReadProblem& problem);

}  // namespace tidewick
