#ifndef TERMINAL_H
#define TERMINAL_H

#include <QString>

/** Writes @p text to standard output. */
void print(const QString &text);

/**
 * Writes @p text for people to stdout, with control characters escaped. On a terminal adds colours
 * and wraps the lines.
 *
 * No colours if NO_COLOR is set, or on a dumb terminal.
 */
void show(const QString &text);

/** Wraps and writes @p text to stdout like show(), but without colours: for help texts. */
void explain(const QString &text);

/** Returns true if standard output is a terminal. */
bool isShownAtTerminal();

/** Takes over the whole terminal for drawScreen(), until giveScreenBack(). */
void takeScreen();

/** Replaces the screen with @p text; drops the lines that do not fit. */
void drawScreen(const QString &text);

void giveScreenBack();

/** Returns true if no write to stdout has failed. */
bool isAllPrinted();

/** Makes further calls of complain() print the details. */
void showDetails();

/** Writes "kyboardctl: " and @p text to stderr; after showDetails() also @p detail. */
void complain(const QString &text, const QString &detail = QString());

/** Replaces the last progress line with @p text if standard error is a terminal. */
void showProgress(const QString &text);

/** Removes the progress line. */
void clearProgress();

/** A person's answer to a question. */
enum class Consent {
    Given,
    Refused,
    NobodyThere, ///< standard input is no terminal, or the question cannot be shown
};

/** Asks @p question on the terminal; only "y" and "yes" count as consent. */
Consent askFor(const QString &question);

/**
 * Reads the secret @p name: from the terminal, without echo, if stdin is a terminal; otherwise the
 * next line of stdin. Returns false at the end of stdin, or if the question cannot be shown.
 */
bool readSecret(const QString &name, QString &secret);

#endif
