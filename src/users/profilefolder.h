#ifndef PROFILEFOLDER_H
#define PROFILEFOLDER_H

class Descriptor;

/*
 * The directories of the user profiles: comparing, emptying and filling them.
 *
 * Callers pass a descriptor of each directory. An absent directory counts as empty. "Files" are
 * regular files. Hidden files and subdirectories count, too. A link that root or the daemon's user
 * owns counts as its target; if it dangles, it is ignored. No other link is followed.
 */

/**
 * Returns true if each file and subdirectory of @p reference, at every depth, also exists in @p
 * directory.
 *
 * Ignores extra entries, and does not compare what the files contain. A link that must not be
 * followed counts as a file, not as a subdirectory.
 */
bool isFolderComplete(const Descriptor &reference, const Descriptor &directory);

/**
 * Returns true if the content of @p directory can be replaced by that of @p source: all of @p
 * source can be read, and the two directories are neither the same nor one inside the other.
 */
bool canReplace(const Descriptor &directory, const Descriptor &source);

/**
 * Removes everything inside @p directory, but not the directory itself. Removes links without
 * following them. Returns false at the first entry that cannot be removed.
 */
bool eraseFolder(const Descriptor &directory);

/**
 * Renames one entry of @p directory that @p reference also has: a file, or a subdirectory if @p
 * reference has no file. Call this before erasing: then isFolderComplete() detects a rebuild that a
 * power cut interrupted.
 */
void makeIncomplete(const Descriptor &directory, const Descriptor &reference);

/**
 * Copies the files and subdirectories of @p source into @p destination.
 *
 * The copy is made in a subdirectory of @p destination (".rebuild"), synchronised, and then moved
 * into place: no file gets its final path before its content is on the disk. The subdirectory is
 * removed at the end. A power cut can leave it behind as an extra entry.
 *
 * @return false at the first failure, such as a name that already exists, or a link in @p source
 *         that must not be followed
 */
bool copyFolder(const Descriptor &source, const Descriptor &destination);

#endif
