#include "slotcache.h"

#include <QDynamicPropertyChangeEvent>
#include <QObject>
#include <QVariant>

namespace
{
/** The adaptor's property in which Qt D-Bus caches look-ups of methods. */
constexpr char cacheProperty[] = "_qdbus_slotCache";

/** Counts the look-ups of one adaptor and empties its cache. */
class CacheLimit : public QObject
{
public:
    explicit CacheLimit(QObject *adaptor) : QObject(adaptor) { adaptor->installEventFilter(this); }

    bool eventFilter(QObject *adaptor, QEvent *event) override
    {
        if (event->type() == QEvent::DynamicPropertyChange &&
            static_cast<QDynamicPropertyChangeEvent *>(event)->propertyName() == cacheProperty &&
            ++m_lookUps > mostCachedSlots) {
            // setProperty() sends this event again, which increments the counter to 0.
            m_lookUps = -1;
            adaptor->setProperty(cacheProperty, QVariant());
        }
        return false;
    }

private:
    int m_lookUps = 0;
};
} // namespace

void limitSlotCaches(QObject *root)
{
    const QObjectList &children = root->children();
    for (QObject *child : children)
        new CacheLimit(child);
}
