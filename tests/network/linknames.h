#ifndef LINKNAMES_H
#define LINKNAMES_H

#include "linkmachine.h"

#include <QString>

/** The name of an enumerator, for documents and failures. */
QString nameOf(LinkEvent event);
QString nameOf(LinkAction action);
QString nameOf(LinkOperation operation);
QString nameOf(KyTcpIpState::State state);
QString nameOf(LinkCondition condition);

/** Formats all of @p link in one line. */
QString describe(const Link &link);

#endif
