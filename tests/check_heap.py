#!/usr/bin/env python3
"""check_heap.py LIBRARY NM

A memory library with a heap inside shows its own functions only, all of them C++, and takes nothing
from the process's heap.
"""
import re
import subprocess
import sys

OF_HEAPS = re.compile(r"(malloc|calloc|realloc|free|memalign|posix_memalign|aligned_alloc|_Z(n|d)[aw]|_Zdl)")


def names(*options):
    listing = subprocess.run([nm, "--dynamic", "--format=posix", *options, library],
                             check=True, stdout=subprocess.PIPE, text=True).stdout
    return {line.split()[0].partition("@")[0] for line in listing.splitlines()}


library, nm = sys.argv[1:]
shown, needed = names("--defined-only"), names("--undefined-only")
if not any("mem_Free" in name for name in shown):
    sys.exit(f"{library} does not export mem_Free: is it the memory library?")
wrong = {name for name in shown if not name.startswith("_Z") or OF_HEAPS.match(name)}
wrong |= {name for name in needed if OF_HEAPS.match(name)}
sys.exit("\n".join(sorted(wrong)) or 0)
