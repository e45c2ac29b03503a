// What the end-to-end driver does differently on Windows, where there is no
// tar, gzip or compress: archives are packed with the build's own qx7za.exe,
// ".Z" files are written here, and the paths in expected texts take the
// backslash that the converter builds its paths with.
#pragma once

#include <string>
#include <utility>
#include <vector>

namespace e2e {

// Packs members of directory into output as "tar", "tgz", "zip" or "gzip"
// (one file), with the renames applied to the tar. Returns the empty text
// or what failed.
std::string packWithSevenZip(const std::string& format, const std::string& output, const std::string& directory,
                             const std::vector<std::string>& members,
                             const std::vector<std::pair<std::string, std::string>>& renames);

// compress -f: replaces path by its LZW form path.Z (16 bits, block mode).
std::string compressFile(const std::string& path);

// The bytes of an LZW ".Z" stream of data, as compress(1) writes it.
std::string lzwCompress(const std::string& data);

// In a case's text: every "/" of a path that starts with a folder
// placeholder (<ROOT>, <WORK>, <TMP>, <DOUBLE>, <BIN>, <SOURCE>) becomes
// "\", up to the next blank, quote, bracket or line end.
std::string withBackslashes(const std::string& text);

// A native path: "/" becomes "\".
std::string nativePath(std::string path);

}  // namespace e2e
