#ifndef TERMINAL_H
#define TERMINAL_H

#include <QString>

/** Writes @p text to standard output. */
void print(const QString &text);

/**
 * Writes @p text for people to standard output: without foreign control characters and, on a
 * terminal, with colours and with lines that fit.
 *
 * No colours if NO_COLOR is set, or on a dumb terminal.
 */
void show(const QString &text);

/** Like show(), without colours: for explanations. */
void explain(const QString &text);

/** Returns true if standard output is a terminal. */
bool isShownAtTerminal();

/** Takes over the whole terminal for drawScreen(), until giveScreenBack(). */
void takeScreen();

/** Replaces the screen with @p text; cuts what does not fit. */
void drawScreen(const QString &text);

void giveScreenBack();

/** Returns true if everything printed has been written. */
bool isAllPrinted();

/** From now on complaints show their details. */
void showDetails();

/**
 * Writes "kyboardctl: " and the line @p text to standard error, and @p detail if details are on.
 */
void complain(const QString &text, const QString &detail = QString());

/** Replaces the last progress line with @p text if standard error is a terminal. */
void showProgress(const QString &text);

/** Removes the progress line. */
void clearProgress();

/** A person's answer to a question. */
enum class Consent {
    Given,
    Refused,
    NobodyThere, ///< standard input is no terminal, or the question could not be seen
};

/** Asks @p question on the terminal; only "y" and "yes" count as consent. */
Consent askFor(const QString &question);

/**
 * Reads the secret of that @p name: from the terminal, without echo, if standard input is one;
 * otherwise the next line of standard input. Returns false if there is none, or no terminal to ask
 * on.
 */
bool readSecret(const QString &name, QString &secret);

#endif
