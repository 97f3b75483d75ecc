# Cross-builds the macOS program on Linux with clang and lld against a macOS
# SDK root (HG_MACOS_SDK), one architecture per build tree (HG_MACOS_ARCH:
# arm64 or x86_64); scripts/build-macos builds both and merges them.
#
# Apple's libc++ comes from the SDK (-stdlib=libc++); ld64.lld links Mach-O
# and signs arm64 output ad hoc, as macOS requires.
set(CMAKE_SYSTEM_NAME Darwin)
set(CMAKE_SYSTEM_VERSION 22.4)

if(NOT HG_MACOS_ARCH)
  set(HG_MACOS_ARCH "$ENV{HG_MACOS_ARCH}")
endif()
if(NOT HG_MACOS_ARCH)
  set(HG_MACOS_ARCH arm64)
endif()
if(NOT HG_MACOS_SDK)
  set(HG_MACOS_SDK "$ENV{HG_MACOS_SDK}")
endif()
if(NOT IS_DIRECTORY "${HG_MACOS_SDK}/System/Library/Frameworks")
  message(FATAL_ERROR "HG_MACOS_SDK must name a macOS SDK root (now: '${HG_MACOS_SDK}')")
endif()
# Try-compiles run in their own projects: hand the two settings on.
list(APPEND CMAKE_TRY_COMPILE_PLATFORM_VARIABLES HG_MACOS_ARCH HG_MACOS_SDK)

set(CMAKE_SYSTEM_PROCESSOR ${HG_MACOS_ARCH})
set(CMAKE_OSX_ARCHITECTURES ${HG_MACOS_ARCH})
set(CMAKE_OSX_SYSROOT ${HG_MACOS_SDK})
# Later deployment targets make @available checks need compiler-rt's macOS
# library, which Debian does not ship.
set(CMAKE_OSX_DEPLOYMENT_TARGET 13.0)

find_program(HG_CLANG NAMES clang-14 clang REQUIRED)
find_program(HG_CLANGXX NAMES clang++-14 clang++ REQUIRED)
find_program(HG_LD64 NAMES ld64.lld-14 ld64.lld REQUIRED)
set(CMAKE_C_COMPILER ${HG_CLANG})
set(CMAKE_CXX_COMPILER ${HG_CLANGXX})
set(CMAKE_OBJCXX_COMPILER ${HG_CLANGXX})
set(hg_target ${HG_MACOS_ARCH}-apple-macos13.0)
set(CMAKE_C_COMPILER_TARGET ${hg_target})
set(CMAKE_CXX_COMPILER_TARGET ${hg_target})
set(CMAKE_OBJCXX_COMPILER_TARGET ${hg_target})
set(CMAKE_CXX_FLAGS_INIT "-stdlib=libc++")
set(CMAKE_OBJCXX_FLAGS_INIT "-stdlib=libc++")
# Every symbol must resolve against the SDK's libraries at link time.
set(hg_link "-stdlib=libc++ -fuse-ld=lld --ld-path=${HG_LD64} -mlinker-version=711 -Wl,-undefined,error")
set(CMAKE_EXE_LINKER_FLAGS_INIT "${hg_link}")
set(CMAKE_SHARED_LINKER_FLAGS_INIT "${hg_link}")
set(CMAKE_MODULE_LINKER_FLAGS_INIT "${hg_link}")

find_program(CMAKE_AR NAMES llvm-ar-14 llvm-ar REQUIRED)
find_program(CMAKE_RANLIB NAMES llvm-ranlib-14 llvm-ranlib REQUIRED)
find_program(CMAKE_INSTALL_NAME_TOOL NAMES llvm-install-name-tool-14 llvm-install-name-tool)

# Headers and libraries come from the SDK only; build tools from this machine.
set(CMAKE_FIND_ROOT_PATH ${HG_MACOS_SDK})
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
