# 32-bit x86 with this machine's own compiler. SSE arithmetic, since the x87's extra precision is nobody's rule.
set(CMAKE_CXX_FLAGS_INIT "-m32 -msse2 -mfpmath=sse")
set(CMAKE_C_FLAGS_INIT "${CMAKE_CXX_FLAGS_INIT}")

# Debian's multilib compiler package, which would link the kernel's headers (asm/) to where -m32 looks, can't be
# installed beside a cross compiler. The 64-bit folder has the same headers; it's searched last.
string(APPEND CMAKE_CXX_FLAGS_INIT " -idirafter /usr/include/x86_64-linux-gnu")
string(APPEND CMAKE_C_FLAGS_INIT " -idirafter /usr/include/x86_64-linux-gnu")
