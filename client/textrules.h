#ifndef TEXTRULES_H
#define TEXTRULES_H

#include <QString>

/*
 * What a text on the command line may be. Pure: a text in, whether it may be sent out.
 */

/** Whether @p text has no control character: nothing that ends a line, or moves a cursor. */
bool isFreeOfControls(const QString &text);

/** Whether @p text is made of the printable characters of ASCII alone. */
bool isPrintableAscii(const QString &text);

/** Whether @p text can be the SSID of an access point: 1 to 32 bytes as UTF-8, no controls. */
bool isNetworkName(const QString &text);

/**
 * Whether @p text can be the name of a network to join: 1 to 32 characters, no controls. ConnMan
 * shows each byte of an SSID that is not UTF-8 as one character of several bytes.
 */
bool isListedNetworkName(const QString &text);

/** Whether @p text can be the name of a user: 1 to 255 characters, no controls. */
bool isUserName(const QString &text);

/** Whether @p text can be the passphrase of a WPA2 network: 8 to 63 printable ASCII characters. */
bool isPassphrase(const QString &text);

/**
 * Whether @p text can be the key of a network to join: a passphrase, the 64 hexadecimal digits of
 * a key, or a WEP key of 5 or 13 characters, or 10 or 26 hexadecimal digits.
 */
bool isNetworkKey(const QString &text);

/** Whether @p text is a number of 16 bits in hexadecimal: one to four digits, nothing else. */
bool isHexadecimal16(const QString &text);

/** Whether @p text is a whole number: digits alone, or after a minus sign. */
bool isWholeNumber(const QString &text);

/** Whether @p text can name a file: it is not empty. */
bool isFileName(const QString &text);

/** @p text with every control character replaced by its code as in "\x0a": safe to be shown. */
QString shown(const QString &text);

#endif
