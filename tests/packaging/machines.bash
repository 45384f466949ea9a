# shellcheck shell=bash
# SPDX-License-Identifier: MIT
#
# Minimal Debian machines of other releases, as folders, for a script to be
# sourced by. It sets "cache", the folder in which they and the logs are kept,
# and has "fail MESSAGE", which gives up.

: "${cache:?}"
status=0
stage_pid=
partial=

# All mounts live in a namespace of the stage that needs them and go with it,
# so what is removed here are plain files.
clean_up() {
    trap '' HUP INT TERM
    local first
    if [[ -n $stage_pid ]]; then
        # When its first process is killed, all processes of the machine are
        # ended before that is reported.
        first=$(ps -o pid= --ppid "$stage_pid" | tr -d ' ')
        kill -KILL "${first:-$stage_pid}" 2>/dev/null || true
        wait
    fi
    if [[ -n $partial ]]; then
        rm -rf --one-file-system -- "$partial"
    fi
    rm -f -- "$cache/output"
}
trap clean_up EXIT
trap 'exit 129' HUP
trap 'exit 130' INT
trap 'exit 143' TERM

# The addresses of the mirrors that this machine itself uses, for whatever
# release, by what they call themselves: Debian or Debian-Security.
mirror() {
    # These are apt's placeholders.
    # shellcheck disable=SC2016
    apt-get indextargets --format '$(REPO_URI) $(LABEL) $(COMPONENT)' \
        'Created-By: Packages' |
        awk -v label="$1" '$2 == label && $3 == "main" && !found { print $1; found = 1 }'
}

# So is what apt has been told about proxies, and about dates where a machine
# lives with a mirror that stands still.
apt_settings() {
    apt-config dump |
        grep -E '^Acquire::((http|https)::(Proxy|Timeout|No-Cache)|Check-|Retries)' ||
        true
}

proxies() {
    local name
    for name in http_proxy https_proxy no_proxy; do
        if [[ -n ${!name-} ]]; then
            printf '%s=%s\n' "$name" "${!name}"
        fi
    done
}

# stage NAME COMMAND...: runs a command, showing and logging what it says, in
# namespaces of its own: what it mounts or leaves running goes with it. Leaves
# its exit status in "status".
stage() {
    local name=$1 tee_pid
    shift
    printf '\n##### %s\n' "$name"
    rm -f -- "$cache/output"
    mkfifo -- "$cache/output"
    tee -- "$cache/logs/$name.log" <"$cache/output" &
    tee_pid=$!
    unshare --mount --pid --fork --kill-child --mount-proc -- "$@" \
        </dev/null >"$cache/output" 2>&1 &
    stage_pid=$!
    status=0
    wait "$stage_pid" || status=$?
    stage_pid=
    wait "$tee_pid"
}

# The first process on a machine: mounts what every Linux machine has, and
# below /mnt the folders that it is given as pairs "MODE FOLDER:PLACE", up to
# "--"; then runs the command there, without anything of this machine's
# environment but the proxies.
# shellcheck disable=SC2016
first_process='
    set -euo pipefail
    machine=$1
    shift
    mount --make-rprivate /
    mount --bind "$machine" "$machine"
    mount -t proc proc "$machine/proc"
    mount -t sysfs -o ro sysfs "$machine/sys"
    mount -t tmpfs -o mode=0755 tmpfs "$machine/dev"
    for device in full null random tty urandom zero; do
        touch "$machine/dev/$device"
        mount --bind "/dev/$device" "$machine/dev/$device"
    done
    mkdir "$machine/dev/pts" "$machine/dev/shm"
    mount -t devpts -o newinstance,ptmxmode=0666,mode=0620,gid=5 devpts "$machine/dev/pts"
    mount -t tmpfs -o mode=1777 tmpfs "$machine/dev/shm"
    ln -s pts/ptmx "$machine/dev/ptmx"
    ln -s /proc/self/fd "$machine/dev/fd"
    ln -s /proc/self/fd/0 "$machine/dev/stdin"
    ln -s /proc/self/fd/1 "$machine/dev/stdout"
    ln -s /proc/self/fd/2 "$machine/dev/stderr"
    mount -t tmpfs -o mode=1777 tmpfs "$machine/tmp"
    mount -t tmpfs -o mode=0755 tmpfs "$machine/mnt"
    while [[ $1 != -- ]]; do
        place=$machine/mnt/${2##*:}
        mkdir "$place"
        mount --bind "${2%:*}" "$place"
        mount -o "remount,bind,$1" "$place"
        shift 2
    done
    shift
    exec chroot "$machine" /usr/bin/env -i HOME=/root LANG=C.UTF-8 TERM=dumb \
        DEBIAN_FRONTEND=noninteractive \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        "$@"'

# stage_on MACHINE NAME [MODE FOLDER:PLACE]... -- COMMAND...: a stage on one of
# the machines.
stage_on() {
    local machine=$1 name=$2 mounts=() environment
    shift 2
    while [[ $1 != -- ]]; do
        mounts+=("$1" "$2")
        shift 2
    done
    shift
    mapfile -t environment < <(proxies)
    stage "$name" bash -c "$first_process" first-process "$machine" "${mounts[@]}" -- \
        "${environment[@]}" "$@"
}

# bootstrap RELEASE FOLDER: makes a minimal machine where the folder does not
# exist. Leaves the exit status of what that took in "status".
bootstrap() {
    local release=$1 folder=$2 main security proxy=
    status=0
    if [[ -d $folder ]]; then
        return
    fi
    # apt can only tell its mirrors once it has fetched their lists.
    if [[ -z $(mirror Debian) ]]; then
        apt-get update
    fi
    main=$(mirror Debian)
    security=$(mirror Debian-Security)
    if [[ -z $main ]]; then
        fail "this machine's apt knows no mirror of Debian to bootstrap from"
    fi
    if ! command -v debootstrap >/dev/null; then
        apt-get update
        DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends debootstrap
    fi
    eval "$(apt-config shell proxy Acquire::http::Proxy)"

    partial=$folder.part
    rm -rf --one-file-system -- "$partial"
    stage "$release.bootstrap" env ${proxy:+"http_proxy=$proxy"} \
        debootstrap --variant=minbase "$release" "$partial" "$main"
    if ((status != 0)); then
        return
    fi
    {
        printf 'deb %s %s main\n' "$main" "$release"
        printf 'deb %s %s-updates main\n' "$main" "$release"
        if [[ -n $security ]]; then
            printf 'deb %s %s-security main\n' "$security" "$release"
        fi
    } >"$partial/etc/apt/sources.list"
    apt_settings >"$partial/etc/apt/apt.conf.d/80this-machine"
    if grep --quiet 'https:' "$partial"/etc/apt/{sources.list,apt.conf.d/80this-machine}; then
        mkdir -p "$partial/etc/ssl/certs"
        cp --dereference /etc/ssl/certs/ca-certificates.crt "$partial/etc/ssl/certs/"
    fi
    # Nothing on the machine starts services when packages are installed.
    printf '#!/bin/sh\nexit 101\n' >"$partial/usr/sbin/policy-rc.d"
    chmod 0755 "$partial/usr/sbin/policy-rc.d"
    mv -- "$partial" "$folder"
    partial=
}

# copy_of FOLDER MACHINE: a new copy of a machine, in the place of an old one.
copy_of() {
    rm -rf --one-file-system -- "$2" "$2.part"
    partial=$2.part
    cp -a --reflink=auto -- "$1" "$partial"
    cp --dereference /etc/resolv.conf /etc/hosts "$partial/etc/"
    mv -- "$partial" "$2"
    partial=
}
