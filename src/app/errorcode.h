#ifndef ERRORCODE_H
#define ERRORCODE_H

#include <QString>

/**
 * The codes and the D-Bus names of the daemon's error replies.
 *
 * Adaptors handle a failure as a code (int, 0 for success). sendErrorReply() looks up the name.
 */
class Error
{
public:
    enum Code {
        None = 0,
        Undefined = 1,
        InvalidArgument = 2,
        ServiceUnreachable = 3,
        Process = 4,
        Read = 5,
        Write = 6,
        Configuration = 7,
        Initialisation = 8,
    };

    static const QString m_none;
    static const QString m_undefined;
    static const QString m_invalidArgument;
    static const QString m_serviceUnreachable;
    static const QString m_process;
    static const QString m_read;
    static const QString m_write;
    static const QString m_configuration;
    static const QString m_initialisation;

    /** The D-Bus error name of @p code; the name of Undefined for any code outside 0 to 8. */
    static QString nameOf(int code);

    /** The code of the D-Bus error name @p name, compared exactly; Undefined for any other text. */
    static int codeOf(const QString &name);
};

/** A row of a method's table of failures: the text for an error code. */
struct ErrorText {
    int code;
    const char *text;
};

/** The error text for a code that is not in a method's table. */
constexpr char unhandledError[] = "The error is not handled correctly, please fill a bug report";

/**
 * Returns the text for @p code in a method's table of failures.
 *
 * @param unexpected the text for a code that is not in the table
 */
template <size_t Rows>
QString errorText(int code, const ErrorText (&table)[Rows], const QString &unexpected)
{
    for (const ErrorText &row : table) {
        if (row.code == code)
            return QString::fromLatin1(row.text);
    }
    return unexpected;
}

#endif
