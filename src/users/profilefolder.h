#ifndef PROFILEFOLDER_H
#define PROFILEFOLDER_H

#include <QString>

/*
 * The folders of the user profiles: comparing, emptying and filling them.
 *
 * A folder's files are its regular files, its subfolders are its folders, both hidden ones
 * included; a link counts as what it points at. A folder that does not exist, or that is no
 * folder, has neither.
 */

/**
 * Whether @p folder holds, at every depth, a file or folder for each one of @p reference.
 *
 * Extra entries do not matter and contents are not compared.
 */
bool isFolderComplete(const QString &reference, const QString &folder);

/**
 * Whether one of the two folders is the other one or lies in it, links resolved: erasing the one
 * would then cost the other its files. False where one of them does not exist.
 */
bool isInsideEachOther(const QString &first, const QString &second);

/** Whether every file and subfolder of @p folder, at every depth, can be read. */
bool isFolderReadable(const QString &folder);

/**
 * Removes everything inside @p folder; the folder itself stays. Links are removed, never followed.
 *
 * @return Error::None, or Error::Write at the first entry that cannot be removed
 */
int eraseFolder(const QString &folder);

/**
 * Copies the files and subfolders of @p source into @p destination, which is made with all missing
 * parents where it does not exist. What was copied is on the disk when the function returns.
 *
 * @return Error::None, or Error::Write at the first failure; a file that exists already is one
 */
int copyFolder(const QString &source, const QString &destination);

#endif
