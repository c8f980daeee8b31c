#ifndef REBUILDMARK_H
#define REBUILDMARK_H

class QString;

/**
 * A mark beside a profile folder, which is there while the folder is being rebuilt.
 *
 * It outlives a power cut: without it a folder whose last file was cut short would pass for a
 * complete one, and a half-erased active profile for one that its user wanted like that.
 */
bool isRebuildMarked(const QString &folder);

/** Sets the mark, so that it is on the disk before anything in @p folder changes. */
void setRebuildMark(const QString &folder);

void clearRebuildMark(const QString &folder);

#endif
