/* The shared library's own translation unit. Its code comes from the core
   archive, linked whole; only the zeblo_* functions are exported. */
typedef int zeblo_library_entry_unused;
