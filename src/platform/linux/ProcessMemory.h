#pragma once

// How the resident application gives memory back. A capture's pictures are large and short-lived:
// the cropped capture, the PNG encoder's filtered rows, the editor's flattened images. glibc's malloc
// would raise its mmap threshold after the first such block is freed and from then on keep every
// later one in its heaps after use, so the process would only grow from capture to capture.
namespace processmemory {

// Every block from 256 KiB up gets its own mapping, unmapped when freed; heaps give back what lies
// free above 1 MiB at their top. Called once, first thing in main().
void returnLargeBlocksToTheSystem();

} // namespace processmemory
