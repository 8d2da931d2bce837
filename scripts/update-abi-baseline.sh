#!/usr/bin/env bash
# Writes the binary interface baseline abi/libPallixRuntime.so.5.abi from a build (default
# build/default): the intended way to move it after an interface change, reviewed in the same
# commit as the change. Takes the same arguments as scripts/check-abi.sh.
exec "$(dirname "$0")/check-abi.sh" --update "$@"
