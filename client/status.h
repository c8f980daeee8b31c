#ifndef STATUS_H
#define STATUS_H

/** Shows the whole instrument on one screen, or as one JSON object; gives the exit status. */
int showStatus(bool asJson);

#endif
