#!/bin/sh
# tell-loader.sh DESTDIR PREFIX: lets the loader find a library that was installed into the running system. Without ldconfig
# a program linked with it does not start. A staged installation (DESTDIR) is nobody's system yet.
set -eu
[ -z "$1" ] || exit 0

PATH=$PATH:/usr/sbin:/sbin
if [ "$(id -u)" -eq 0 ]; then ldconfig; fi
if ! ldconfig -p | grep -qF " => $2/"; then
    echo "install: the loader does not look below $2: set LD_LIBRARY_PATH, or name its folder in /etc/ld.so.conf.d" >&2
fi
