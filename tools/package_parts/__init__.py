"""The parts of tools/package.py: the pages as HTML, the notices of what is linked in, and what a receiver needs to link
the module anew."""
