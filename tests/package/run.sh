#!/bin/sh
# SPDX-License-Identifier: LGPL-2.1-or-later
# Installs a built tree into a folder of its own and uses it from outside: other projects find, compile and
# link the libraries, and a call on a fresh session bus starts the daemon.
set -eu
build=$1
sources=$(cd "$(dirname "$0")" && pwd)
# Always the same folder, so that the compiler's cache knows it.
work=$build/package
rm -rf "$work"
mkdir "$work"

cmake --install "$build" --prefix "$work/tree" > "$work/install.log" || { cat "$work/install.log"; exit 1; }
PKG_CONFIG_PATH=$(dirname "$(find "$work/tree" -name fennel-eas.pc)")
export PKG_CONFIG_PATH
launcher=
if command -v ccache > /dev/null; then
    launcher=-DCMAKE_CXX_COMPILER_LAUNCHER=ccache
fi
cmake -G Ninja -S "$sources" -B "$work/consumer" -DCMAKE_PREFIX_PATH="$work/tree" $launcher > "$work/configure.log" ||
    { cat "$work/configure.log"; exit 1; }
ninja -C "$work/consumer" > "$work/build.log" || { cat "$work/build.log"; exit 1; }

libraries=$(dirname "$(find "$work/tree" -name libfennel-eas.so)")
for program in consumer consumer-pkgconfig; do
    LD_LIBRARY_PATH=$libraries "$work/consumer/$program"
done
# The programs look for plugins of the tree's own from where they are.
for plugin in $(cd "$build" && find . -path '*/fennel-eas/plugins/*.so' ! -path './package/*'); do
    [ -e "$work/tree/$plugin" ] || { echo "not installed: $plugin"; exit 1; }
done
# The bus starts each service by the full path of its program.
for service in "$work"/tree/share/dbus-1/services/*.service; do
    program=$(sed -n 's/^Exec=//p' "$service")
    [ -x "$program" ] || { echo "not installed: $program of $service"; exit 1; }
done
"$work/tree/bin/fennel-eas" --version
"$work/tree/bin/fennel-eas" --help > /dev/null

# The daemon finds the bus, no account, and nothing of the user who runs the test.
for folder in home runtime accounts signon mail; do
    mkdir -m 700 "$work/$folder"
done
export HOME="$work/home" XDG_RUNTIME_DIR="$work/runtime" ACCOUNTS="$work/accounts"
export SSO_STORAGE_PATH="$work/signon" QMF_DATA="$work/mail" XDG_DATA_DIRS="$work/tree/share:/usr/share"
unset XDG_CONFIG_HOME XDG_DATA_HOME XDG_CACHE_HOME AG_PROVIDERS AG_SERVICES AG_SERVICE_TYPES AG_APPLICATIONS
for program in client client-pkgconfig; do
    LD_LIBRARY_PATH=$libraries dbus-run-session -- "$work/consumer/$program"
done
echo "The installed tree works."
