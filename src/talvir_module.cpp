// The shared library's own translation unit: the areas are linked in as static libraries.
// Nothing here; the file exists so that the library target has a source of its own.
