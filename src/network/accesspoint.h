#ifndef ACCESSPOINT_H
#define ACCESSPOINT_H

#include "linkdriver.h"

/** Carries out the actions that are specific to the Wi-Fi access point. */
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
