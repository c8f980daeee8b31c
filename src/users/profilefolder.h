#ifndef PROFILEFOLDER_H
#define PROFILEFOLDER_H

class Descriptor;

/*
 * The directories of the user profiles: comparing, emptying and filling them.
 *
 * Each directory is given by a descriptor. An absent one counts as empty. Its files are its regular
 * files, its subdirectories its directories, both including hidden ones. A link that root or the
 * daemon's user owns counts as its target, and is ignored if it dangles. Any other link is never
 * followed.
 */

/**
 * Returns true if @p directory holds, at every depth, a file or subdirectory for each one of @p
 * reference.
 *
 * Ignores extra entries and contents. A link that must not be followed counts as a file, not as a
 * subdirectory.
 */
bool isFolderComplete(const Descriptor &reference, const Descriptor &directory);

/**
 * Returns true if the content of @p directory can be replaced by that of @p source: all of @p
 * source can be read, and erasing @p directory erases no part of it (neither directory is the other
 * or inside the other).
 */
bool canReplace(const Descriptor &directory, const Descriptor &source);

/**
 * Removes everything inside @p directory, but not the directory itself. Removes links without
 * following them. Returns false at the first entry that cannot be removed.
 */
bool eraseFolder(const Descriptor &directory);

/**
 * Renames a file of @p reference, or a subdirectory if it has no file, in @p directory. Call this
 * before erasing, so that isFolderComplete() detects a rebuild that a power cut interrupted.
 */
void makeIncomplete(const Descriptor &directory, const Descriptor &reference);

/**
 * Copies the files and subdirectories of @p source into @p destination.
 *
 * The copy is made in a subdirectory of @p destination (".rebuild"), synchronised, and then moved
 * into place: no file gets its name before its content is on the disk. The subdirectory is removed
 * at the end; after a power cut it counts as any extra entry.
 *
 * @return false at the first failure, such as a name that already exists, or a link in @p source
 *         that must not be followed
 */
bool copyFolder(const Descriptor &source, const Descriptor &destination);

#endif
