#include "ProcessMemory.h"

#include <malloc.h>

namespace processmemory {

void returnLargeBlocksToTheSystem()
{
    // Setting either value also switches off glibc's dynamic adjustment of both.
    mallopt(M_MMAP_THRESHOLD, 256 * 1024);
    mallopt(M_TRIM_THRESHOLD, 1024 * 1024);
}

} // namespace processmemory
