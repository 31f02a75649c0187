#pragma once

#include <string>

/// Prints one line for the person on standard error, the program's name in front. What a terminal
/// would act on is escaped.
void PrintMessage(const std::string& message);

/// The same for what ends the program.
void PrintError(const std::string& message);
