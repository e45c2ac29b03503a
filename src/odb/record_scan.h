// scanRecord: the formatted scan of one record line, with the result and the
// areas written exactly as sscanf gives them. The readers scan millions of
// lines, so the usual shapes (whitespace, %s with or without a width and
// '*', %c, %d, %ld, %lf over plain decimal numbers) are read directly; any
// other directive or an unusual number (hex, inf, an exponent without
// digits, more than 18 digits) hands the whole line to sscanf, which then
// writes the same areas again and goes on where the direct read stopped.
#pragma once

// Returns the number of fields assigned, or -1 when the input ended before
// the first assignment, as sscanf does.
int scanRecord(const char* text, const char* format, ...);
