/*
 * What the examples need beside the library: whole files in memory, the blocks of bitmap files, and
 * the words of a failure.
 */
#ifndef EXAMPLES_FILES_H
#define EXAMPLES_FILES_H

/* The whole file in memory that the caller frees; null with a message where it cannot be read. */
unsigned char* read_file(const char* name, unsigned long* size);

/* The bitmap block of a bitmap file, which is all behind its file header; otherwise as above. */
unsigned char* read_bitmap(const char* name, unsigned long* size);

/* Writes a whole file. Returns whether that failed, after a message. */
int write_file(const char* name, const unsigned char* data, unsigned long size);

/* Writes a corrected block behind the file header that bitmap files have; returns the same. */
int write_bitmap(const char* name, const unsigned char* block, unsigned long size);

/* Whether a status is a failure; then with the library's own words. */
int failed(const char* what, long status);

#endif
