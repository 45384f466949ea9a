# shellcheck shell=bash
# SPDX-License-Identifier: MIT
#
# Functions for minimal Debian chroots ("machines"), sourced by the scripts in
# this folder. A script calls "open_cache" first.
#
# Variables that the functions set for the script:
#
#   tree     the folder of Tarnwell's source tree
#   cache    the folder of the machines and logs
#   status   the exit status of the last stage
#   seconds  the duration of the last stage

# shellcheck does not see that the sourcing script uses these variables and that
# trap calls clean_up:
# shellcheck disable=SC2034,SC2317

tree=$(readlink -f -- "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/..")
cache=
status=0
seconds=0

# How much of its command's output a stage prints: all, below a title
# ("titled"); all without a title ("plain"); or only the end, if the command
# fails (empty).
shown=titled

# Folders that are removed when the script ends.
throw_away=()

partial=
output=
tee_pid=

fail() {
    printf '%s: %s\n' "${0##*/}" "$1" >&2
    exit 1
}

# Each stage has its own mount namespace, which ends with the stage, so the
# folders to remove contain no mounts.
clean_up() {
    trap '' HUP INT TERM
    local job first
    for job in $(jobs -p); do
        # Killing the first process of a PID namespace ends all of its processes
        # before "wait" returns.
        first=$(ps -o pid= --ppid "$job" | tr -d ' ') || true
        kill -KILL "${first:-$job}" 2>/dev/null || true
        wait "$job" || true
    done
    if [[ -n $tee_pid ]]; then
        exec {output}>&-
        wait "$tee_pid" || true
    fi
    rm -rf --one-file-system -- ${partial:+"$partial"} "${throw_away[@]}"
}

# open_cache FOLDER: checks for root, creates the cache folder and locks it until
# the script ends. The default folder has the script's name and is in the user's
# cache.
open_cache() {
    local name=${0##*/} lock
    if ((EUID != 0)); then
        fail "bootstrapping and entering a chroot requires root"
    fi
    cache=${1:-${XDG_CACHE_HOME:-${HOME:?}/.cache}/tarnwell/$name}
    mkdir -p -- "$cache/logs"
    cache=$(readlink -f -- "$cache")
    exec {lock}>"$cache/lock"
    if ! flock --nonblock "$lock"; then
        fail "$cache is in use by another $name"
    fi
    trap clean_up EXIT
    trap 'exit 129' HUP
    trap 'exit 130' INT
    trap 'exit 143' TERM
}

# mirror LABEL: prints the URL of the host's apt mirror with that label, "Debian"
# or "Debian-Security", for any release.
mirror() {
    # The variables are apt's placeholders.
    # shellcheck disable=SC2016
    apt-get indextargets --format '$(REPO_URI) $(LABEL) $(COMPONENT)' \
        'Created-By: Packages' |
        awk -v label="$1" '$2 == label && $3 == "main" && !found { print $1; found = 1 }'
}

# Prints the host's apt settings for proxies, retries, and validity dates, which
# a mirror with a fixed snapshot needs.
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

# stage NAME COMMAND...: runs a command in new mount and PID namespaces, so that
# its mounts and processes end with it, and logs its output. Sets "status" and
# "seconds".
stage() {
    local name=$1 log=$cache/logs/$1.log begin=$SECONDS
    shift
    if [[ $shown == titled ]]; then
        printf '\n##### %s\n' "$name"
    fi
    if [[ -n $shown ]]; then
        # Ctrl+C also reaches tee, which must log until the end.
        exec {output}> >(exec tee --ignore-interrupts -- "$log")
        tee_pid=$!
    else
        exec {output}>"$log"
    fi
    status=0
    unshare --mount --pid --fork --kill-child --mount-proc -- "$@" \
        </dev/null >&"$output" 2>&1 {output}>&- &
    exec {output}>&-
    wait "$!" || status=$?
    if [[ -n $tee_pid ]]; then
        wait "$tee_pid" || true
        tee_pid=
    fi
    seconds=$((SECONDS - begin))
    if ((status != 0)) && [[ -z $shown ]]; then
        printf 'Failed with exit status %s; %s ends with:\n' "$status" "$log"
        tail -n 20 -- "$log" | sed 's/^/    /'
    fi
}

# The first process in a chroot: mounts /proc, /sys and /dev, and below /mnt the
# folders that are passed as pairs "MODE FOLDER:PLACE" up to "--". Then it runs
# the command with a new environment that contains only the host's proxies. The
# chroot is read-only unless its mode is "rw". The process does not exec the
# command, because the first process of a PID namespace must reap orphans.
# shellcheck disable=SC2016
first_process='
    set -euo pipefail
    mode=$1
    machine=$2
    shift 2
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
    if [[ $mode == ro ]]; then
        mount -t tmpfs -o mode=1777 tmpfs "$machine/tmp"
    fi
    if [[ $1 != -- ]]; then
        mount -t tmpfs -o mode=0755 tmpfs "$machine/mnt"
    fi
    while [[ $1 != -- ]]; do
        place=$machine/mnt/${2##*:}
        mkdir "$place"
        mount --bind "${2%:*}" "$place"
        mount -o "remount,bind,$1" "$place"
        shift 2
    done
    shift
    mount -o "remount,bind,$mode" "$machine"
    # The kernel refuses user namespaces, which tests create, in a chroot.
    cd "$machine"
    pivot_root . .
    umount --lazy .
    cd /
    /usr/bin/env -i HOME=/root LANG=C.UTF-8 TERM=dumb \
        PATH=/usr/local/sbin:/usr/local/bin:/usr/sbin:/usr/bin:/sbin:/bin \
        "$@" || exit'

# stage_on MODE MACHINE NAME [MODE FOLDER:PLACE]... -- COMMAND...: runs a stage in
# a chroot.
stage_on() {
    local mode=$1 machine=$2 name=$3 mounts=() environment
    shift 3
    while [[ $1 != -- ]]; do
        mounts+=("$1" "$2")
        shift 2
    done
    shift
    mapfile -t environment < <(proxies)
    stage "$name" bash -c "$first_process" first-process "$mode" "$machine" "${mounts[@]}" -- \
        "${environment[@]}" "$@"
}

# bootstrap RELEASE FOLDER: creates a minimal chroot if the folder does not
# exist. The first line of its sources.list is the release itself. Sets
# "status".
bootstrap() {
    local release=$1 folder=$2 main security proxy=
    status=0
    if [[ -d $folder ]]; then
        return
    fi
    # apt lists its mirrors only after it has fetched their package lists.
    if [[ -z $(mirror Debian) ]]; then
        apt-get update
    fi
    main=$(mirror Debian)
    security=$(mirror Debian-Security)
    if [[ -z $main ]]; then
        fail "apt has no Debian mirror to bootstrap from"
    fi
    if ! command -v debootstrap >/dev/null; then
        apt-get update
        DEBIAN_FRONTEND=noninteractive \
            apt-get install -y --no-install-recommends debootstrap
    fi
    eval "$(apt-config shell proxy Acquire::http::Proxy)"

    printf '\nBootstrapping a minimal Debian %s, which takes minutes: %s\n' "$release" "$folder"
    partial=$folder.part
    rm -rf --one-file-system -- "$partial"
    stage "$release.bootstrap" env ${proxy:+"http_proxy=$proxy"} \
        debootstrap --variant=minbase "$release" "$partial" "$main"
    if ((status != 0)); then
        rm -rf --one-file-system -- "$partial"
        partial=
        return
    fi
    {
        printf 'deb %s %s main\n' "$main" "$release"
        if [[ $release != sid ]]; then
            printf 'deb %s %s-updates main\n' "$main" "$release"
            if [[ -n $security ]]; then
                printf 'deb %s %s-security main\n' "$security" "$release"
            fi
        fi
    } >"$partial/etc/apt/sources.list"
    apt_settings >"$partial/etc/apt/apt.conf.d/80this-machine"
    if grep --quiet 'https:' "$partial"/etc/apt/{sources.list,apt.conf.d/80this-machine}; then
        mkdir -p "$partial/etc/ssl/certs"
        cp --dereference /etc/ssl/certs/ca-certificates.crt "$partial/etc/ssl/certs/"
    fi
    # Packages do not start services in the chroot.
    printf '#!/bin/sh\nexit 101\n' >"$partial/usr/sbin/policy-rc.d"
    chmod 0755 "$partial/usr/sbin/policy-rc.d"
    mv -- "$partial" "$folder"
    partial=
}

# copy_of FOLDER MACHINE: replaces MACHINE by a copy of the chroot FOLDER.
copy_of() {
    rm -rf --one-file-system -- "$2" "$2.part"
    partial=$2.part
    cp -a --reflink=auto -- "$1" "$partial"
    cp --dereference /etc/resolv.conf /etc/hosts "$partial/etc/"
    mv -- "$partial" "$2"
    partial=
}
