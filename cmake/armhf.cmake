# Cross build for 32-bit ARM with Debian's compiler and libraries; programs run under qemu-user.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR armv7l)
set(CMAKE_C_COMPILER arm-linux-gnueabihf-gcc)
set(CMAKE_CXX_COMPILER arm-linux-gnueabihf-g++)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_LIBRARY_ARCHITECTURE arm-linux-gnueabihf)
# The device's musl has 64-bit file offsets and times always; glibc has to be asked for them. Without
# them a listing or a stat fails wherever an inode number, a size or a time needs more than 32 bits.
# None of the linked libraries has such a type in its interface.
add_compile_definitions(_FILE_OFFSET_BITS=64 _TIME_BITS=64)
# Notes on how GCC before 7 passed some types; everything here is built by one compiler.
add_compile_options(-Wno-psabi)
# Debian's libraries for the architecture lie where an ARM machine has them, so qemu needs no prefix.
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-arm)
