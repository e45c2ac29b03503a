#include "odb/record_scans.h"

#include "odb/record_scan.h"

namespace {

// The formats, for the lines whose numbers need sscanf.
const RecordFormat kNetScan("%*s %2047s %2047s");
const RecordFormat kSntScan("%*s %15s %c %2047s %ld");
const RecordFormat kNameScan("%*s %2047s");
const RecordFormat kCmpScan("%*s %ld %lf %lf %lf %c %2047s %2047s", 0x0E);
const RecordFormat kPrpScan("%*s %2047s %2047s ");
const RecordFormat kTopScan("%*s %ld %lf %lf %lf %c %ld %ld %2047s", 0x4E);

constexpr std::int32_t kWord = 2047;

}  // namespace

int scanNetRecord(const char* line, char* netName, char* secondWord) {
    return scanFields(line, field::Pass{}, field::Word{netName, kWord}, field::Word{secondWord, kWord});
}

int scanSntRecord(const char* line, char* kind, char* side, char* numberWord, long* pinIndex) {
    const int result = scanFields(line, field::Pass{}, field::Word{kind, 15}, field::Blank{},
                                  field::Character{side}, field::Word{numberWord, kWord}, field::Integer{pinIndex});
    return result != FieldScan::kUnsure ? result : kSntScan.scan(line, kind, side, numberWord, pinIndex);
}

int scanNameRecord(const char* line, char* name) {
    return scanFields(line, field::Pass{}, field::Word{name, kWord});
}

int scanCmpRecord(const char* line, long* packageNumber, char* mirror, char* name, char* partName) {
    const int result = scanFields(line, field::Pass{}, field::Integer{packageNumber}, field::Real{nullptr},
                                  field::Real{nullptr}, field::Real{nullptr}, field::Blank{},
                                  field::Character{mirror}, field::Word{name, kWord}, field::Word{partName, kWord});
    if (result != FieldScan::kUnsure) return result;
    double x = 0, y = 0, rotation = 0;
    return kCmpScan.scan(line, packageNumber, &x, &y, &rotation, mirror, name, partName);
}

int scanPrpRecord(const char* line, char* name, char* value) {
    // The format's last blank only passes white space: nothing to assign.
    return scanFields(line, field::Pass{}, field::Word{name, kWord}, field::Word{value, kWord});
}

int scanTopRecord(const char* line, long* pinNumber, char* mirror, long* netNumber, char* pinText) {
    const int result = scanFields(line, field::Pass{}, field::Integer{pinNumber}, field::Real{nullptr},
                                  field::Real{nullptr}, field::Real{nullptr}, field::Blank{},
                                  field::Character{mirror}, field::Integer{netNumber}, field::Integer{nullptr},
                                  field::Word{pinText, kWord});
    if (result != FieldScan::kUnsure) return result;
    double x = 0, y = 0, rotation = 0;
    long subnetNumber = 0;
    return kTopScan.scan(line, pinNumber, &x, &y, &rotation, mirror, netNumber, &subnetNumber, pinText);
}
