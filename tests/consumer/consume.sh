#!/bin/sh
# SPDX-License-Identifier: MIT
# Builds the first program the way a user of the library would, runs it, and compares what it
# prints. CXX and CXXFLAGS are those of the build under test.
#
#   consume.sh install|find_package|add_subdirectory|shared_library|pkg_config|compiler_line
#
# Set by tests/consumer/CMakeLists.txt: SOURCE and BUILD (this project), GENERATOR, PREFIX (where
# `install` puts the library), LIBDIR, VERSION, APPS (is there a tool? ON or OFF), WORK (a folder to
# build in).
set -eu

way=$1
first_program=$SOURCE/examples/first_program.cpp
here=$SOURCE/tests/consumer
work=$WORK/$way
LD_LIBRARY_PATH=$PREFIX/$LIBDIR
export LD_LIBRARY_PATH

fresh_folder() {
  rm -rf "$1"
  mkdir -p "$1"
}

build_with_cmake() {
  cmake -S "$here/$way" -B "$work" -G "$GENERATOR" -DFIRST_PROGRAM="$first_program" "$@"
  cmake --build "$work"
}

fresh_folder "$work"
case $way in
  install)
    fresh_folder "$PREFIX"
    cmake --install "$BUILD" --prefix "$PREFIX"
    exit
    ;;
  find_package)
    build_with_cmake -DCMAKE_PREFIX_PATH="$PREFIX" -DWANTED_VERSION="$VERSION"
    ;;
  add_subdirectory)
    build_with_cmake -DLIBRARY_SOURCE="$SOURCE"
    ;;
  shared_library)
    # Built by somebody who hides what is not named otherwise, and moved once it is installed.
    cmake -S "$SOURCE" -B "$work" -G "$GENERATOR" -DBUILD_SHARED_LIBS=ON \
      -DCMAKE_CXX_VISIBILITY_PRESET=hidden -DCSR_MATRIX_MOD_BUILD_APPS="$APPS" \
      -DCSR_MATRIX_MOD_BUILD_EXAMPLES=OFF -DCSR_MATRIX_MOD_BUILD_TESTS=OFF
    cmake --build "$work"
    cmake --install "$work" --prefix "$work/installed"
    mv "$work/installed" "$work/moved"
    unset LD_LIBRARY_PATH
    [ "$APPS" = OFF ] || "$work/moved/bin/csrmat" --version
    $CXX $CXXFLAGS -std=c++20 -o "$work/first_program" "$first_program" \
      -I "$work/moved/include" -L "$work/moved/$LIBDIR" -lcsr_matrix_mod \
      "-Wl,-rpath,$work/moved/$LIBDIR"
    ;;
  pkg_config)
    PKG_CONFIG_PATH=$PREFIX/$LIBDIR/pkgconfig
    export PKG_CONFIG_PATH
    pkg-config --exact-version="$VERSION" csr_matrix_mod
    # Unquoted: each of these is several words.
    $CXX $CXXFLAGS -std=c++20 -o "$work/first_program" "$first_program" \
      $(pkg-config --cflags --libs csr_matrix_mod)
    ;;
  compiler_line)
    cd "$SOURCE"
    $CXX $CXXFLAGS -std=c++20 -ffp-contract=off -I include -o "$work/first_program" \
      src/*/*.cpp "$first_program"
    ;;
esac

"$work/first_program" >"$work/printed"
diff "$SOURCE/examples/first_program.expected" "$work/printed"
