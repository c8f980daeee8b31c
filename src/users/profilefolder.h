#ifndef PROFILEFOLDER_H
#define PROFILEFOLDER_H

class Descriptor;

/*
 * The directories of the user profiles: comparing, emptying and filling them.
 *
 * A directory is given by a descriptor of it. One that is absent has no files and no
 * subdirectories. Its files are its regular files, its subdirectories are its directories, both
 * hidden ones included. A link in it that root or the daemon's user owns counts as what it points
 * at, and as nothing where it points nowhere. Any other link is never followed.
 */

/**
 * Whether @p directory holds, at every depth, a file or subdirectory for each one of @p reference.
 *
 * Extra entries do not matter and contents are not compared. A link that must not be followed is a
 * file in its own right, and no subdirectory.
 */
bool isFolderComplete(const Descriptor &reference, const Descriptor &directory);

/**
 * Whether the content of @p directory can be replaced by that of @p source: every file and
 * subdirectory of @p source can be read, and none is lost by erasing @p directory, as it would be
 * if one of the two were the other one or lay in it.
 */
bool canReplace(const Descriptor &directory, const Descriptor &source);

/**
 * Removes everything inside @p directory; the directory itself stays. Links are removed, never
 * followed. False at the first entry that cannot be removed.
 */
bool eraseFolder(const Descriptor &directory);

/**
 * Takes a file of @p reference, or a subdirectory if it has no file, from @p directory by giving it
 * another name. Done before erasing, it has isFolderComplete() recognise what a power cut leaves.
 */
void makeIncomplete(const Descriptor &directory, const Descriptor &reference);

/**
 * Copies the files and subdirectories of @p source into @p destination.
 *
 * They are copied into a subdirectory of @p destination (".rebuild"), synchronised, and then moved
 * to their place: no file has its name before its content is on the disk. The subdirectory does not
 * outlive the call; after a power cut it counts as any extra entry, and is erased as one.
 *
 * @return false at the first failure: a name that is taken already is one, and so is a link in
 *         @p source that must not be followed
 */
bool copyFolder(const Descriptor &source, const Descriptor &destination);

#endif
