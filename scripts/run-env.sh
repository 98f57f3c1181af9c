# Sourced by the scripts that run programs: the S3 server and the Wine prefix of one run.
# `start_...` sets what the programs need, `end_run` takes it all down; call it from a trap.

root=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
jobs=$(nproc)
began=$SECONDS

# every place that a client could take credentials or proxies from, but ours
unset AWS_PROFILE AWS_SESSION_TOKEN AWS_SECURITY_TOKEN AWS_DEFAULT_REGION AWS_REGION
unset http_proxy https_proxy all_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY

# For LSAN_OPTIONS: the uploads that tests leave open. The path is in quotes, because a blank would end
# it.
open_uploads="suppressions='$root/tests/support/open_upload.lsan'"

elapsed() {
    printf '%d:%02d' $(((SECONDS - began) / 60)) $(((SECONDS - began) % 60))
}

stage() {
    printf '\n==== [%s] %s\n' "$(elapsed)" "$*"
}

# start_s3 DIR [MINUTES]: a server that lives as long as this script does, ten hours at most unless
# told.
start_s3() {
    "$root/tests/service/rgw" up "$1" --owner $$ --minutes "${2:-600}"
    s3_dir=$1 # only now is it ours: another run's server may have been in the way
    set -a
    . "$s3_dir/env"
    set +a
}

# start_wine DIR: a fresh prefix. Its server stays for five minutes when idle, so that not each
# program has to start one.
start_wine() {
    export MIRQOS_WINEPREFIX=$1
    wineserver_of "$1" -k || true
    rm -rf "$1" "$1.lock"
    mkdir -p "$1"
    wine_prefix=$1
    wineserver_of "$1" -p300
    "$root/cmake/run-under-wine" cmd /c exit
}

# wineserver_of PREFIX OPTION: Wine's server of that prefix and no other.
wineserver_of() {
    WINEPREFIX=$1 /usr/lib/wine/wineserver64 "$2" >/dev/null 2>&1
}

end_run() {
    trap '' INT TERM
    if [ -n "${wine_prefix:-}" ]; then
        wineserver_of "$wine_prefix" -k || true
    fi
    if [ -n "${s3_dir:-}" ]; then
        "$root/tests/service/rgw" down "$s3_dir" || true
    fi
}
