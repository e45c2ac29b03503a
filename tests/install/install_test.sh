#!/usr/bin/env bash
# Installs the program the way a user gets it and converts a job with it,
# run by name from an unrelated folder with only the installed bin/ added to
# PATH. Two ways in:
#   prefix   cmake --install into a scratch prefix
#   package  the Debian package made by CPack, unpacked with dpkg-deb -x
#            (exit 77, a skip, where dpkg-deb is absent); lintian, where
#            installed, must report nothing on it
# Either way the installed tree must hold exactly the shipped files.
#
# install_test.sh prefix|package <build-dir> <version> <job-dir> <expected.vrn> <expected.console>
set -euo pipefail
mode=$1 build=$2 version=$3 job=$4 expected_vrn=$5 expected_console=$6

fail() { echo "FAIL: $*"; exit 1; }

# The file list of an installed tree: "mode path", symbolic links included.
listing() { (cd "$1" && find . -mindepth 1 ! -type d -printf '%M %P\n' | LC_ALL=C sort -k2); }

if [ "$mode" = package ] && ! command -v dpkg-deb >/dev/null; then
    echo "SKIP: dpkg-deb not found, the Debian package is not built or checked"
    exit 77
fi

scratch=$(mktemp -d)
trap 'rm -rf "$scratch"' EXIT

case $mode in
prefix)
    "${CMAKE:-cmake}" --install "$build" --prefix "$scratch/root" >/dev/null
    root=$scratch/root
    gz=""
    if command -v groff >/dev/null; then
        for page in "$root"/share/man/man1/*.1; do
            warnings=$(groff -man -ww -z "$page" 2>&1)
            [ -z "$warnings" ] || fail "groff warns on $(basename "$page"):"$'\n'"$warnings"
        done
    else
        echo "note: groff not found, the manual pages are not checked"
    fi
    ;;
package)
    "${CPACK:-cpack}" --config "$build/CPackConfig.cmake" -B "$scratch/deb" >"$scratch/cpack.log" 2>&1 ||
        { cat "$scratch/cpack.log"; fail "cpack failed"; }
    deb=$scratch/deb/odb2vrn_${version}_$(dpkg --print-architecture).deb
    [ -f "$deb" ] || fail "no $(basename "$deb"); made: $(ls "$scratch/deb")"

    field() { dpkg-deb -f "$deb" "$1"; }
    [ "$(field Package)" = odb2vrn ] || fail "Package: $(field Package)"
    [ "$(field Version)" = "$version" ] || fail "Version: $(field Version)"
    [ "$(field Section)" = utils ] || fail "Section: $(field Section)"
    maintainer_form='^Korvane Systems <[^@>]+@[^>]+>$'
    [[ "$(field Maintainer)" =~ $maintainer_form ]] || fail "Maintainer: $(field Maintainer)"
    [[ ", $(field Depends)," == *", 7zip,"* ]] || fail "Depends lacks 7zip: $(field Depends)"
    # Every entry belongs to root, and every folder is readable by all.
    strays=$(dpkg-deb -c "$deb" | awk '$2 != "root/root" || ($1 ~ /^d/ && $1 != "drwxr-xr-x")')
    [ -z "$strays" ] || fail "entries with wrong owner or mode:"$'\n'"$strays"

    if command -v lintian >/dev/null; then
        # Its findings go to standard output; its standard error holds notes
        # of its own (running as root), shown only when it fails.
        status=0
        findings=$(lintian "$deb" 2>"$scratch/lintian.errors") || status=$?
        [ -z "$findings" ] || fail "lintian reports:"$'\n'"$findings"
        [ $status -eq 0 ] || fail "lintian failed (exit $status): $(cat "$scratch/lintian.errors")"
    else
        echo "note: lintian not found, the package is not checked by it"
    fi

    dpkg-deb -x "$deb" "$scratch/x"
    root=$scratch/x/usr
    [ "$(ls -A "$scratch/x")" = usr ] || fail "files outside /usr: $(ls -A "$scratch/x")"
    gz=.gz
    for text in share/man/man1/Odb2vrn_64.1 share/man/man1/qx7za.exe.1 share/doc/odb2vrn/changelog; do
        gzip -t "$root/$text.gz" || fail "$text.gz is no gzip file"
    done
    top=$(zcat "$root/share/doc/odb2vrn/changelog.gz" | head -n 1)
    [[ $top == "odb2vrn ($version) "* ]] || fail "the changelog's last entry is not for $version: $top"
    ;;
*)
    fail "unknown mode $mode"
    ;;
esac

expected_tree="-rwxr-xr-x bin/Odb2vrn_64
-rwxr-xr-x bin/qx7za.exe
-rw-r--r-- share/doc/odb2vrn/README.md
-rw-r--r-- share/doc/odb2vrn/changelog$gz
-rw-r--r-- share/doc/odb2vrn/copyright
-rw-r--r-- share/man/man1/Odb2vrn_64.1$gz
-rw-r--r-- share/man/man1/qx7za.exe.1$gz"
actual_tree=$(listing "$root")
[ "$actual_tree" = "$expected_tree" ] ||
    fail "installed files differ:"$'\n'"$(diff <(echo "$expected_tree") <(echo "$actual_tree"))"

# Pack the job as scripts/convert does: one wrapping folder, the bottom
# components as a compress(1) member.
name=$(basename "$job")
mkdir "$scratch/stage" "$scratch/work" "$scratch/tmp"
cp -r "$job" "$scratch/stage/$name"
bottom="$scratch/stage/$name/steps/pcb/layers/comp_+_bot/components"
if [ -f "$bottom" ]; then compress -f "$bottom"; fi
tar -C "$scratch/stage" -czf "$scratch/$name.tgz" "$name"

cd "$scratch/work"
export PATH="$root/bin:$PATH" TMP="$scratch/tmp"
unset RQT32 VOSKARDIR
[ "$(command -v Odb2vrn_64)" = "$root/bin/Odb2vrn_64" ] || fail "PATH finds $(command -v Odb2vrn_64)"
status=0
Odb2vrn_64 "$scratch/$name.tgz" >"$scratch/console" || status=$?

[ $status -eq 0 ] || fail "exit status $status; console:"$'\n'"$(cat "$scratch/console")"
diff -u "$expected_console" "$scratch/console" || fail "console text differs"
[ -f "$name.vrn" ] || fail "no $name.vrn in the current folder: $(ls -A)"
diff -u "$expected_vrn" "$name.vrn" || fail "$name.vrn differs"
[ "$(ls -A)" = "$name.vrn" ] || fail "the current folder holds more than $name.vrn: $(ls -A)"
[ -z "$(ls -A "$TMP")" ] || fail "temporary tree left in TMP: $(ls -A "$TMP")"
echo "PASS: $mode"
