#include "wire.h"

#include "deadline.h"
#include "files.h"
#include "remote.h"

#include <QFile>
#include <QProcess>
#include <QStringList>

#include <dbus/dbus.h>

#include <fcntl.h>
#include <unistd.h>

namespace
{
void expect(bool isDone, const char *what)
{
    if (!isDone)
        qFatal("%s", what);
}

/** Appends formatted values to a message. */
class Writer
{
public:
    explicit Writer(const QString &values) : m_tokens(values.split(QLatin1Char(' '))) {}

    void write(DBusMessage *message)
    {
        DBusMessageIter end;
        dbus_message_iter_init_append(message, &end);
        const QByteArray signature = next().toUtf8();
        expect(dbus_signature_validate(signature.constData(), nullptr), "not a signature");
        if (signature.isEmpty())
            return;
        DBusSignatureIter type;
        dbus_signature_iter_init(&type, signature.constData());
        writeAll(end, type);
        expect(m_tokens.isEmpty(), "more values than the signature has");
    }

private:
    QString next()
    {
        expect(!m_tokens.isEmpty(), "fewer values than the signature has");
        const QString token = m_tokens.takeFirst();
        return token == QLatin1String("\"\"") ? QString() : token;
    }

    /** Writes one value for each type from @p type on. */
    void writeAll(DBusMessageIter &end, DBusSignatureIter &type)
    {
        do {
            writeOne(end, type);
        } while (dbus_signature_iter_next(&type));
    }

    void writeOne(DBusMessageIter &end, const DBusSignatureIter &type)
    {
        switch (const int code = dbus_signature_iter_get_current_type(&type)) {
        case DBUS_TYPE_ARRAY:
            writeArray(end, type);
            return;
        case DBUS_TYPE_VARIANT:
            writeVariant(end);
            return;
        case DBUS_TYPE_STRUCT:
        case DBUS_TYPE_DICT_ENTRY: {
            DBusMessageIter inside;
            DBusSignatureIter members;
            dbus_signature_iter_recurse(&type, &members);
            dbus_message_iter_open_container(&end, code, nullptr, &inside);
            writeAll(inside, members);
            dbus_message_iter_close_container(&end, &inside);
            return;
        }
        default:
            writeBasic(end, code);
            return;
        }
    }

    void writeArray(DBusMessageIter &end, const DBusSignatureIter &type)
    {
        DBusSignatureIter element;
        dbus_signature_iter_recurse(&type, &element);
        char *signature = dbus_signature_iter_get_signature(&element);
        DBusMessageIter inside;
        dbus_message_iter_open_container(&end, DBUS_TYPE_ARRAY, signature, &inside);
        dbus_free(signature);
        for (int count = next().toInt(); count > 0; --count)
            writeOne(inside, element);
        dbus_message_iter_close_container(&end, &inside);
    }

    void writeVariant(DBusMessageIter &end)
    {
        const QByteArray signature = next().toUtf8();
        expect(dbus_signature_validate_single(signature.constData(), nullptr), "not one type");
        DBusSignatureIter type;
        dbus_signature_iter_init(&type, signature.constData());
        DBusMessageIter inside;
        dbus_message_iter_open_container(&end, DBUS_TYPE_VARIANT, signature.constData(), &inside);
        writeOne(inside, type);
        dbus_message_iter_close_container(&end, &inside);
    }

    void writeBasic(DBusMessageIter &end, int code)
    {
        const QByteArray token = next().toUtf8();
        DBusBasicValue value = {};
        const char *text = token.constData();
        switch (code) {
        case DBUS_TYPE_STRING:
        case DBUS_TYPE_OBJECT_PATH:
        case DBUS_TYPE_SIGNATURE:
            expect(dbus_message_iter_append_basic(&end, code, &text), "not a text");
            return;
        case DBUS_TYPE_UNIX_FD:
            value.fd = open("/dev/null", O_RDONLY | O_CLOEXEC);
            dbus_message_iter_append_basic(&end, code, &value);
            close(value.fd);
            return;
        case DBUS_TYPE_BOOLEAN:
            value.bool_val = token == "true";
            break;
        case DBUS_TYPE_DOUBLE:
            value.dbl = token.toDouble();
            break;
        case DBUS_TYPE_UINT64:
            value.u64 = token.toULongLong();
            break;
        default:
            // On a little-endian machine, every shorter integer consists of the first bytes.
            value.i64 = token.toLongLong();
            break;
        }
        dbus_message_iter_append_basic(&end, code, &value);
    }

    QStringList m_tokens;
};
} // namespace

Wire::Wire() : m_connection(dbus_bus_get_private(DBUS_BUS_SYSTEM, nullptr))
{
    expect(m_connection != nullptr, "no system bus");
    dbus_connection_set_exit_on_disconnect(m_connection, false);
}

Wire::~Wire()
{
    dbus_connection_close(m_connection);
    dbus_connection_unref(m_connection);
}

QString Wire::name() const
{
    return QString::fromUtf8(dbus_bus_get_unique_name(m_connection));
}

QString Wire::call(const QString &service, const QString &path, const QString &interface,
                   const QString &method, const QString &values)
{
    DBusMessage *message =
        dbus_message_new_method_call(service.toUtf8().constData(), path.toUtf8().constData(),
                                     interface.toUtf8().constData(), method.toUtf8().constData());
    if (!values.isEmpty())
        Writer(values).write(message);
    DBusError error = DBUS_ERROR_INIT;
    DBusMessage *reply =
        dbus_connection_send_with_reply_and_block(m_connection, message, deadlineMs, &error);
    dbus_message_unref(message);
    if (reply == nullptr) {
        QString text =
            QString::fromUtf8(error.name) + QStringLiteral(": ") + QString::fromUtf8(error.message);
        dbus_error_free(&error);
        return text;
    }
    QString text =
        QLatin1Char('(') + QString::fromUtf8(dbus_message_get_signature(reply)) + QLatin1Char(')');
    dbus_message_unref(reply);
    return text;
}

void Wire::signal(const QString &path, const QString &interface, const QString &member,
                  const QString &values)
{
    DBusMessage *message = dbus_message_new_signal(
        path.toUtf8().constData(), interface.toUtf8().constData(), member.toUtf8().constData());
    Writer(values).write(message);
    expect(dbus_connection_send(m_connection, message, nullptr), "not sent");
    dbus_connection_flush(m_connection);
    dbus_message_unref(message);
}

namespace
{
/** Makes the world's bus read @p rules in addition to its own. */
bool configureBus(const QByteArray &rules)
{
    if (!QFile::exists("/run/private-world"))
        return false;
    writeFile("/run/dbus/extra.conf", "<busconfig>" + rules + "</busconfig>");
    return QProcess::execute("busctl", {"--system", "--quiet", "call", "org.freedesktop.DBus", "/",
                                        "org.freedesktop.DBus", "ReloadConfig"}) == 0;
}
} // namespace

bool letDescriptorsThrough()
{
    return configureBus("<policy context=\"mandatory\">"
                        "<allow send_destination=\"com.orvendis.Strandel.BoardManager\"/>"
                        "</policy>");
}

bool liftBusLimits()
{
    return configureBus("<limit name=\"max_message_size\">33554432</limit>"
                        "<limit name=\"max_incoming_bytes\">133169152</limit>"
                        "<limit name=\"max_outgoing_bytes\">133169152</limit>");
}
