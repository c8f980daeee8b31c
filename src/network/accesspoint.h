#ifndef ACCESSPOINT_H
#define ACCESSPOINT_H

#include "linkdriver.h"

/** Carries out what is the access point's alone. */
class AccessPoint : public LinkDriver
{
    Q_OBJECT

public:
    explicit AccessPoint(LinkParts &parts);

protected:
    LinkEvent perform(LinkAction action) override;

private:
    bool writeConfiguration() const;
    bool isServing() const;
    LinkEvent checkInterface() const;
};

#endif
