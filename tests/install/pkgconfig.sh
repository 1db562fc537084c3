#!/bin/sh
# Builds the sample hosts with what pkg-config says of the installed tree, and runs them.
# usage: sh pkgconfig.sh PREFIX LIBDIR CC CXX PKG_CONFIG
# shellcheck disable=SC2046 # the flags are words
set -eu
libdir=$1/$2 cc=$3 cxx=$4 pkg_config=$5
sample=$(dirname "$0")/sample
export PKG_CONFIG_PATH="$libdir/pkgconfig" LD_LIBRARY_PATH="$libdir"

"$cc" -std=c11 "$sample/host.c" -o pkg_host_c $("$pkg_config" --cflags --libs quarry-guard)
"$cxx" -std=c++17 "$sample/host.cpp" -o pkg_host_cpp $("$pkg_config" --cflags --libs quarry-opencv)
"$cxx" -std=c++17 "$sample/host_easy.cpp" -o pkg_host_easy $("$pkg_config" --cflags --libs quarry-opencv)
./pkg_host_c
./pkg_host_cpp
./pkg_host_easy
