#ifndef TEXTRULES_H
#define TEXTRULES_H

#include <QString>

/* Checks texts of the command line. Pure. */

/** Returns true if @p text has no control character, which could end a line or move a cursor. */
bool isFreeOfControls(const QString &text);

/** Returns true if @p text has only printable ASCII characters. */
bool isPrintableAscii(const QString &text);

/**
 * Returns true if @p text can be the SSID of an access point: 1 to 32 bytes as UTF-8, no controls.
 */
bool isNetworkName(const QString &text);

/**
 * Returns true if @p text can be the name of a network to join: 1 to 32 characters, no controls.
 *
 * An SSID has at most 32 bytes, its name in ConnMan may have more: ConnMan replaces each byte that
 * is not valid UTF-8 by a character of three bytes.
 */
bool isListedNetworkName(const QString &text);

/** Returns true if @p text can be the name of a user: 1 to 255 characters, no controls. */
bool isUserName(const QString &text);

/** Returns true if @p text can be a WPA2 passphrase: 8 to 63 printable ASCII characters. */
bool isPassphrase(const QString &text);

/**
 * Returns true if @p text can be the key of a network to join: a passphrase, a key of 64
 * hexadecimal digits, or a WEP key of 5 or 13 characters, or 10 or 26 hexadecimal digits.
 */
bool isNetworkKey(const QString &text);

/** Returns true if @p text is a 16-bit number in hexadecimal: one to four digits, nothing else. */
bool isHexadecimal16(const QString &text);

/** Returns true if @p text is an integer: only digits, optionally after a minus sign. */
bool isWholeNumber(const QString &text);

/** Returns true if @p text can name a file: it is not empty. */
bool isFileName(const QString &text);

/**
 * Returns @p text with every control character replaced by its code, such as "\x0a": safe to print.
 */
QString shown(const QString &text);

#endif
