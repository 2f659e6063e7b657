#!/bin/sh
# Prints the country code of the SIM's home network, for example 460, as soon as the SIM is known.
#
#     imsi.sh [OPTION...]        options for varkelctl, for example --unit-file unit.conf
set -eu

tries=30
while [ $tries -gt 0 ]; do
    code=0
    imsi=$(varkelctl "$@" imsi) || code=$?
    case $code in
        0)
            printf '%.3s\n' "$imsi"
            exit 0
            ;;
        4) tries=$((tries - 1)) ;; # the module is not open yet, or its SIM waits for the PIN
        *) exit $code ;;           # varkelctl has said why
    esac
done
exit 4
