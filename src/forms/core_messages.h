#pragma once

#include <QString>

#include "forms/interaction.h"
#include "platform/result.h"
#include "readers/reader_contract.h"

// What the core reports, in the words the window and the command line show.
namespace tidewick {

/// The words of a reader's problem: "This is not a Vegas project file.", "An error occurred
/// accessing the selected RPP file.  ..." and the like.
QString readProblemText(const ReadProblem& problem);

/// The message box that tells of a reader's problem: its words, the title of its kind and
/// failure ("Processing RPP File", "File Error"), the icon of its severity, and OK.
MessageBoxRequest readProblemMessage(const ReadProblem& problem);

/// The message box that tells that the settings could not be saved, where `error` names the
/// store that refused them.
MessageBoxRequest settingsNotSavedMessage(const Error& error);

}  // namespace tidewick
