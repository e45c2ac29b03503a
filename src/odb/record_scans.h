// The scans of the records that the eda/data and components readers act on,
// one function each, named by the format it stands for. Each gives exactly
// what sscanf with that format gives: the same result and the same areas
// (a value that nobody reads may be left unwritten, as marked). The fields
// are read directly; a number that only sscanf reads right sends the line
// to sscanf with that format.
#pragma once

// eda/data, NET: "%*s %2047s %2047s".
int scanNetRecord(const char* line, char* netName, char* secondWord);
// eda/data, SNT: "%*s %15s %c %2047s %ld", the kind word and, for a kind
// that is a whole word, the rest of a SNT TOP record.
int scanSntRecord(const char* line, char* kind, char* side, char* numberWord, long* pinIndex);
// eda/data, PKG and PIN: "%*s %2047s".
int scanNameRecord(const char* line, char* name);

// components, CMP: "%*s %ld %lf %lf %lf %c %2047s %2047s"; the position and
// the rotation are only checked for their form.
int scanCmpRecord(const char* line, long* packageNumber, char* mirror, char* name, char* partName);
// components, PRP: "%*s %2047s %2047s ".
int scanPrpRecord(const char* line, char* name, char* value);
// components, TOP: "%*s %ld %lf %lf %lf %c %ld %ld %2047s"; the position,
// the rotation and the subnet number are only checked for their form.
int scanTopRecord(const char* line, long* pinNumber, char* mirror, long* netNumber, char* pinText);
