/* The minimal service: answers every call with a text, using only libdbus. */

#include "connection.h"

static void answer(DBusConnection *connection, DBusMessage *call)
{
    const char *text = "user1";
    DBusMessage *reply = dbus_message_new_method_return(call);
    dbus_message_append_args(reply, DBUS_TYPE_STRING, &text, DBUS_TYPE_INVALID);
    dbus_connection_send(connection, reply, NULL);
    dbus_message_unref(reply);
}

int main(void)
{
    DBusError error = DBUS_ERROR_INIT;
    DBusConnection *connection = connectToBus();
    dbus_bus_request_name(connection, "com.orvendis.Strandel.Echo", 0, &error);
    if (dbus_error_is_set(&error))
        fail(error.name, error.message);
    while (dbus_connection_read_write(connection, -1)) {
        DBusMessage *message;
        while ((message = dbus_connection_pop_message(connection))) {
            if (dbus_message_get_type(message) == DBUS_MESSAGE_TYPE_METHOD_CALL)
                answer(connection, message);
            dbus_message_unref(message);
        }
    }
    return 0;
}
