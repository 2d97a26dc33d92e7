# 32-bit big-endian PowerPC: the controller's processor. Programs run through qemu's user emulation.
set(CMAKE_SYSTEM_NAME Linux)
set(CMAKE_SYSTEM_PROCESSOR ppc)
set(CMAKE_C_COMPILER powerpc-linux-gnu-gcc) # GoogleTest's project() asks for C as well
set(CMAKE_CXX_COMPILER powerpc-linux-gnu-g++)
# Memory is short, and this core gains nothing from functions and loops that begin on cache lines.
set(MPUEVENT_SMALL ON)
set(CMAKE_CXX_FLAGS_INIT
    "-falign-functions=4 -falign-jumps=4 -falign-loops=4 -falign-labels=4")
set(CMAKE_CROSSCOMPILING_EMULATOR qemu-ppc -L /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH /usr/powerpc-linux-gnu)
set(CMAKE_FIND_ROOT_PATH_MODE_PROGRAM NEVER)
set(CMAKE_FIND_ROOT_PATH_MODE_LIBRARY ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_INCLUDE ONLY)
set(CMAKE_FIND_ROOT_PATH_MODE_PACKAGE ONLY)
