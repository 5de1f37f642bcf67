# The libraries that the builds for Windows stand on, built once from Debian's sources: sourced by scripts/windows.
# shellcheck shell=bash

# Outside the tree: a fresh checkout finds what another has built.
DEPENDENCIES=${ZEL_WINDOWS_DEPENDENCIES:-${XDG_CACHE_HOME:-$HOME/.cache}/zel-windows}
export ZEL_WINDOWS_DEPENDENCIES=$DEPENDENCIES
readonly DEPENDENCIES

declare -rA TRIPLES=([x64]=x86_64-w64-mingw32 [x86]=i686-w64-mingw32)

# Where this machine has Debian's packages from.
debian_archive() {
    # shellcheck disable=SC2016 # apt's own variables
    apt-get indextargets --format '$(RELEASE) $(COMPONENT) $(REPO_URI)' 'Created-By: Packages' |
        sed -n 's/^bookworm main //p' | head -n 1
}

# Fetches and unpacks a Debian source package, unless it is there: fetch_source PACKAGE
# The list of sources is one of its own; the system's stays as it is.
fetch_source() {
    local folder=$DEPENDENCIES/sources lists=$DEPENDENCIES/sources/lists
    [[ ! -e $folder/$1/.whole ]] || return 0
    mkdir -p -- "$lists/partial"
    local options=(-o "Dir::Etc::SourceList=$folder/sources.list" -o Dir::Etc::SourceParts=/dev/null
        -o "Dir::State::Lists=$lists" -o APT::Sandbox::User=root)
    if [[ ! -e $folder/sources.list ]]; then
        printf 'deb-src [signed-by=/usr/share/keyrings/debian-archive-keyring.gpg] %s bookworm main\n' \
            "$(debian_archive)" >"$folder/sources.list"
    fi
    [[ -n $(find "$lists" -name '*Sources*' -print -quit) ]] || apt-get -q "${options[@]}" update
    rm -rf -- "${folder:?}/$1" "$folder/$1.new"
    mkdir -- "$folder/$1.new"
    (cd -- "$folder/$1.new" && apt-get -q "${options[@]}" --only-source source "$1")
    mv -- "$(find "$folder/$1.new" -mindepth 1 -maxdepth 1 -type d)" "$folder/$1"
    rm -rf -- "$folder/$1.new"
    touch -- "$folder/$1/.whole"
}

# Configures, builds and installs a CMake project: cmake_into_prefix SOURCE [OPTION...]
cmake_into_prefix() {
    local source=$1
    shift
    cmake -S "$source" -B . -G Ninja -D CMAKE_TOOLCHAIN_FILE="$ROOT/cmake/windows/$machine.cmake" \
        -D CMAKE_BUILD_TYPE=Release -D CMAKE_INSTALL_PREFIX="$prefix" -D BUILD_SHARED_LIBS=OFF "$@"
    cmake --build . --parallel "$jobs"
}

# One function a library; they run in an empty folder, with $source, $prefix, $machine, $triple and $jobs.

make_fftw3() {
    local more=()
    # Its own code makes room on the stack for vectors where the caller has not aligned it.
    [[ $machine == x64 ]] || more=(--with-incoming-stack-boundary=2 "CFLAGS=-O3 -msse2 -mfpmath=sse -fomit-frame-pointer")
    "$source/configure" --host="$triple" --prefix="$prefix" --enable-single --enable-sse2 --with-our-malloc \
        --disable-fortran --disable-doc --disable-shared "CC=$triple-gcc-posix" "${more[@]}"
    make -j "$jobs"
    make install
}

make_libyuv() {
    cmake -S "$source" -B . -G Ninja -D CMAKE_TOOLCHAIN_FILE="$ROOT/cmake/windows/$machine.cmake" \
        -D CMAKE_BUILD_TYPE=Release -D TEST=OFF
    cmake --build . --parallel "$jobs" --target yuv
    cp -- libyuv.a "$prefix/lib/"
    cp -r -- "$source/include/." "$prefix/include/"
}

# Of this one the sources are one file.
make_glew() {
    "$triple-gcc-posix" -O2 -msse2 -DGLEW_STATIC -DGLEW_NO_GLU -I "$source/include" -c "$source/src/glew.c" -o glew.o
    "$triple-ar" rcs "$prefix/lib/libGLEW.a" glew.o
    cp -r -- "$source/include/GL" "$prefix/include/"
}

make_libpng1.6() {
    cmake_into_prefix "$source" -D PNG_SHARED=OFF -D PNG_TESTS=OFF -D PNG_FRAMEWORK=OFF
    cmake --install .
}

make_protobuf() {
    cmake_into_prefix "$source/cmake" -D protobuf_BUILD_TESTS=OFF -D protobuf_BUILD_PROTOC_BINARIES=OFF \
        -D protobuf_WITH_ZLIB=OFF
    cmake --install .
}

make_opencv() {
    local off=(WITH_1394 WITH_ADE WITH_AVIF WITH_DIRECTX WITH_DIRECTML WITH_DSHOW WITH_EIGEN WITH_FFMPEG WITH_GSTREAMER
        WITH_IMGCODEC_HDR WITH_IMGCODEC_PFM WITH_IMGCODEC_PXM WITH_IMGCODEC_SUNRASTER WITH_IPP WITH_ITT WITH_JASPER
        WITH_JPEG WITH_LAPACK WITH_MSMF WITH_OBSENSOR WITH_OPENCL WITH_OPENCLAMDBLAS WITH_OPENCLAMDFFT WITH_OPENEXR
        WITH_OPENJPEG WITH_PNG WITH_QUIRC WITH_TBB WITH_TIFF WITH_V4L WITH_VFW WITH_VTK WITH_WEBP WITH_WIN32UI
        BUILD_PROTOBUF BUILD_ZLIB BUILD_TESTS BUILD_PERF_TESTS BUILD_JAVA BUILD_opencv_apps BUILD_opencv_js
        BUILD_opencv_python2 BUILD_opencv_python3 ENABLE_PRECOMPILED_HEADERS OPENCV_GENERATE_SETUPVARS)
    local options=("${off[@]/%/=OFF}") dispatch=AVX2
    options=("${options[@]/#/-D}")
    # In 32 bits one of the functions that its code for AVX2 calls does not exist.
    [[ $machine == x64 ]] || dispatch=''
    # The modules behind the finder of faces come with objdetect.
    cmake_into_prefix "$source" "${options[@]}" -D BUILD_LIST=core,imgproc,dnn,objdetect \
        -D CPU_BASELINE=SSE2 -D CPU_BASELINE_DISABLE=SSE3 -D "CPU_DISPATCH=$dispatch" \
        -D PROTOBUF_UPDATE_FILES=ON -D PROTOBUF_PROTOC_EXECUTABLE=/usr/bin/protoc \
        -D Protobuf_LIBRARY="$prefix/lib/libprotobuf.a" -D Protobuf_INCLUDE_DIR="$prefix/include" \
        -D OPENCV_DOWNLOAD_TRIES_LIST=
    cmake --install .
}

# The tests' own; Debian ships its sources as a package.
make_googletest() {
    cmake_into_prefix /usr/src/googletest
    cmake --install .
}

# Libraries that are nothing but headers, from the packages that are installed for the ordinary build.
copy_headers() {
    local package file
    for package in libeigen3-dev libstb-dev libcli11-dev nlohmann-json3-dev; do
        while read -r file; do
            [[ ! -f $file ]] || install -D -m 644 -- "$file" "$prefix/${file#/usr/}"
        done < <(dpkg -L "$package" | grep -E '^/usr/(include|share/(cmake|eigen3))/')
        install -D -m 644 -- "/usr/share/doc/$package/copyright" "$prefix/licences/${package%-dev}.txt"
    done
}

# Builds one library for one processor, unless it is there: make_dependency MACHINE NAME
make_dependency() {
    local machine=$1 name=$2 log=$DEPENDENCIES/$1-$2.log jobs
    local prefix=$DEPENDENCIES/$machine triple=${TRIPLES[$machine]} source=$DEPENDENCIES/sources/$name
    local made=$prefix/.made-$name folder=$DEPENDENCIES/build-$machine-$name
    [[ ! -e $made ]] || return 0
    jobs=$(nproc)
    say "Building $name for $machine"
    rm -rf -- "$folder"
    mkdir -p -- "$folder" "$prefix/lib" "$prefix/include" "$prefix/licences"
    # In the background, since a shell whose result is asked for goes on after a failure.
    (
        [[ $name == googletest ]] || fetch_source "$name"
        cd -- "$folder" || exit
        "make_$name"
    ) >"$log" 2>&1 &
    if ! wait $!; then
        tail -n 15 "$log" >&2
        fail "$name cannot be built for $machine; all that was said is in $log"
    fi
    [[ $name == googletest ]] || cp -- "$source/debian/copyright" "$prefix/licences/$name.txt"
    rm -rf -- "$folder" "$log"
    touch -- "$made"
}

# All of them, the slow ones last: make_dependencies MACHINE...
make_dependencies() {
    local machine name prefix
    mkdir -p -- "$DEPENDENCIES"
    for name in fftw3 libyuv glew libpng1.6 googletest protobuf opencv; do
        for machine; do make_dependency "$machine" "$name"; done
    done
    for machine; do
        prefix=$DEPENDENCIES/$machine
        copy_headers
    done
}
