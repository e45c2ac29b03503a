#!/usr/bin/env bash
# The Windows release as a user gets it: the zip unpacked into a folder whose
# path has a blank, a fresh Wine prefix, and conversions started from an
# unrelated folder, once by the program's full path and once through PATH,
# each from a .bat file. Every VRN file and console must be the expected one
# (CR LF), TMP empty afterwards; the programs import system DLLs only, and
# the version resource names the project's version. Then the end-to-end cases
# of paths past ASCII (tests/e2e/cases/paths) run against the zip's program,
# with the Windows system code pages 1252 and 932.
#
#   tests/release/windows_zip.sh <odb2vrn-<version>-win64.zip> <e2e_windows_helper.exe>
#
# Boards: the demo job (packed as scripts/convert packs it, with a ".Z"
# member) and the shared samples when ../shared/samples is there.
set -eEuo pipefail
trap 'echo "FAILED: $BASH_COMMAND (line $LINENO)"' ERR
zip=$(realpath "$1") helper=$(realpath "$2")
here=$(cd "$(dirname "$0")" && pwd)
source_dir=$(dirname "$(dirname "$here")")
fail() { echo "FAIL: $*"; exit 1; }
version=$(sed -n 's/^project(odb2vrn VERSION \([0-9.]*\).*/\1/p' "$source_dir/CMakeLists.txt")
name=$(basename "$zip" .zip)
[ "$name" = "odb2vrn-$version-win64" ] || fail "the zip is named $name, not for version $version"

scratch=$(mktemp -d "${TMPDIR:-/tmp}/odb2vrn_release.XXXXXX")
export WINEPREFIX="$scratch/prefix" WINEARCH=win64 WINEDEBUG=-all WINEDLLOVERRIDES="mscoree,mshtml="
unset DISPLAY WAYLAND_DISPLAY
finish() {
    wineserver -k 2>/dev/null || true
    rm -rf "$scratch"
}
trap finish EXIT
native() { local path=${1//\//\\}; echo "Z:$path"; }

# --- What the zip holds ------------------------------------------------------
install="$scratch/Program Files"
mkdir -p "$install"
"$source_dir/tools/qx7za/qx7za.exe" x -bso0 -bsp0 "$zip" -o"$install"
folder="$install/$name"
for file in Odb2vrn_64.exe qx7za.exe README.txt licenses/odb2vrn.txt licenses/7-zip/License.txt licenses/7-zip/source.txt; do
    [ -s "$folder/$file" ] || fail "the zip lacks $name/$file"
done
[ "$(ls -A "$install")" = "$name" ] || fail "the zip has more than its one top folder: $(ls -A "$install")"
grep -q $'\r$' "$folder/README.txt" || fail "README.txt does not have CR LF line ends"

# System DLLs only: no runtime DLL of the compiler may be needed beside them.
for program in Odb2vrn_64.exe qx7za.exe; do
    imports=$(x86_64-w64-mingw32-objdump -p "$folder/$program" | sed -n 's/^\s*DLL Name: //p')
    [ -n "$imports" ] || fail "$program: no imports read"
    for dll in $imports; do
        case ${dll,,} in
        kernel32.dll | user32.dll | advapi32.dll | oleaut32.dll | ole32.dll | shell32.dll | msvcrt.dll | ucrtbase.dll | api-ms-win-*.dll) ;;
        *) fail "$program imports $dll, which Windows does not have" ;;
        esac
    done
done

# The version resource: VS_FIXEDFILEINFO's file and product version, and the
# ProductVersion text.
fixed="" text=""
read -r fixed text < <(perl -e '
    local $/; open my $f, "<:raw", $ARGV[0] or die; my $d = <$f>;
    my $i = index($d, pack("V", 0xFEEF04BD)); exit if $i < 0;
    my (undef, $fms, $fls, $pms, $pls) = unpack("V5", substr($d, $i + 4, 20));
    my $key = join("", map { "$_\0" } split //, "ProductVersion") . "\0\0";
    my $v = substr($d, index($d, $key) + length($key), 64); $v =~ s/^\0+//; $v =~ s/\0\0.*//s; $v =~ s/\0//g;
    printf "%d.%d.%d,%d.%d.%d %s\n", $fms >> 16, $fms & 0xffff, $fls >> 16, $pms >> 16, $pms & 0xffff, $pls >> 16, $v;
' "$folder/Odb2vrn_64.exe") || true
[ "$fixed" = "$version,$version" ] && [ "$text" = "$version" ] ||
    fail "version resource: '$fixed' / '$text', not $version"

# --- Boards and what they must give -----------------------------------------
boards="$scratch/boards" expect="$scratch/expect"
mkdir -p "$boards/demo" "$expect"
cp -R "$source_dir/demo/demo_board" "$boards/demo/"
compress -f "$boards/demo/demo_board/steps/pcb/layers/comp_+_bot/components"
tar -czf "$boards/demo_board.tgz" -C "$boards/demo" demo_board
rm -rf "$boards/demo"
as_written() { perl -pe 's/\n/\r\n/'; }
demo_case="$source_dir/tests/e2e/cases/conversion/demo_board"
as_written <"$demo_case/expected.vrn" >"$expect/demo_board.vrn"
as_written <"$demo_case/expected.console" >"$expect/demo_board.console"
# A sample's expected console starts after the "Using unzip" line, and its
# rights comment (line 4 of the file) is not compared.
samples="$source_dir/../shared/samples"
for sample in "$samples"/*.tgz; do
    [ -f "$sample" ] && [ -f "${sample%.tgz}.vrn" ] || continue
    base=$(basename "$sample" .tgz)
    cp "$sample" "$boards/"
    { echo "Using unzip from search path"; cat "${sample%.tgz}.console"; } | as_written >"$expect/$base.console"
    as_written <"${sample%.tgz}.vrn" | sed '4d' >"$expect/$base.vrn"
done

# --- A fresh prefix, then the runs ----------------------------------------------
mkdir -p "$WINEPREFIX"
wineserver -p >/dev/null 2>&1 </dev/null
timeout 300 wine wineboot -i >/dev/null 2>&1
# A long-lived process in a hidden console of its own, as in
# scripts/test-win64: hidden-console starts of qx7za.exe don't stall then.
timeout 1800 wine cmd /c start /min cmd /c "ping -n 1800 127.0.0.1 >nul" >/dev/null 2>&1 </dev/null &

for way in full_path search_path; do
    elsewhere="$scratch/elsewhere/$way"
    mkdir -p "$elsewhere" "$scratch/tmp"
    {
        echo "@echo off"
        echo "set TMP=$(native "$scratch/tmp")"
        echo "cd /d $(native "$elsewhere")"
        if [ $way = search_path ]; then
            echo "set PATH=$(native "$folder");%PATH%"
            program=Odb2vrn_64
        else
            program="\"$(native "$folder")\\Odb2vrn_64.exe\""
        fi
        for board in "$boards"/*.tgz; do
            base=$(basename "$board" .tgz)
            echo "$program $(native "$board") >$base.console"
            echo "echo %ERRORLEVEL% >$base.exit"
        done
    } | as_written >"$scratch/$way.bat"
    (cd "$scratch" && timeout 600 wine cmd /c "$(native "$scratch/$way.bat")" >"$scratch/$way.wine" 2>&1) ||
        fail "$way: the .bat file did not run: $(cat "$scratch/$way.wine")"
    for board in "$boards"/*.tgz; do
        base=$(basename "$board" .tgz)
        [ "$(tr -d '\r ' <"$elsewhere/$base.exit")" = 0 ] || fail "$way, $base: exit code $(cat "$elsewhere/$base.exit")"
        cmp -s "$expect/$base.console" "$elsewhere/$base.console" || fail "$way, $base: the console differs: $(cat -v "$elsewhere/$base.console")"
        actual_vrn="$elsewhere/$base.vrn"
        if [ "$base" = demo_board ]; then
            cmp -s "$expect/$base.vrn" "$actual_vrn" || fail "$way, $base: the VRN file differs"
        else
            sed '4d' "$actual_vrn" | cmp -s "$expect/$base.vrn" - || fail "$way, $base: the VRN file differs"
        fi
    done
    [ -z "$(ls -A "$scratch/tmp")" ] || fail "$way: left in TMP: $(ls -A "$scratch/tmp")"
done
# --- Paths past ASCII, in both code pages ---------------------------------------
cases=("$source_dir"/tests/e2e/cases/paths/*/)
passed=0
for code_page in 1252 932; do
    for case_dir in "${cases[@]}"; do
        status=0
        ODB2VRN_WINE_CODE_PAGE=$code_page bash "$source_dir/tests/e2e/run_case" "$case_dir" "$folder" \
            "$(command -v wine)" "$helper" >"$scratch/case.log" 2>&1 || status=$?
        case $status in
        0) passed=$((passed + 1)) ;;
        77) echo "$(basename "$case_dir"), code page $code_page: $(cat "$scratch/case.log")" ;;
        *) fail "code page $code_page, $(basename "$case_dir"): $(cat -v "$scratch/case.log")" ;;
        esac
    done
done
echo "PASS: $name converts the boards ($(cd "$boards" && echo *.tgz)) by full path and through PATH, byte for byte,"
echo "and $passed runs of the ${#cases[@]} cases of paths past ASCII in the code pages 1252 and 932; system DLLs only; version $version"
