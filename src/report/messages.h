// Leveled console messages. All console output of the converter goes to the
// standard output; writeMessage is the one routed path, with a frame per
// level. Only level 0 is used (by the components reader).
#pragma once

#include <cstdint>

// The number Error, Warning and Debug lines show: 1 for the whole run.
std::int32_t messageLine();

// Formats and prints the result as it stands ("%s"), so a percent sign in
// the formatted text is printed as it is.
void writeText(const char* format, ...) __attribute__((format(printf, 1, 2)));

// Formats the message and prints it in the frame of its level:
// 0 plain, 1 status, 2 error, 3 warning, 4 debug (never enabled), any other
// "Unknown".
void writeMessage(std::int32_t level, const char* format, ...) __attribute__((format(printf, 2, 3)));
