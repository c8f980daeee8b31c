#ifndef TERMINAL_H
#define TERMINAL_H

#include <QString>

/** Writes @p text to standard output. */
void print(const QString &text);

/**
 * Writes @p text for people to standard output: without control characters of others and, where
 * that is a terminal, with colours and in lines that fit it.
 *
 * Colours are left out where NO_COLOR is set, or the terminal is a dumb one.
 */
void show(const QString &text);

/** As show(), without colours: for text that explains. */
void explain(const QString &text);

/** Whether standard output is a terminal. */
bool isShownAtTerminal();

/** Takes the whole terminal for drawScreen(), until giveScreenBack(). */
void takeScreen();

/** Draws @p text in the place of what was drawn before; what does not fit is left out. */
void drawScreen(const QString &text);

void giveScreenBack();

/** Whether all that was printed has been written. */
bool isAllPrinted();

/** Has complaints come with their details from now on. */
void showDetails();

/** Writes "kyboardctl: " and @p text, a line, to standard error, and @p detail if it is wanted. */
void complain(const QString &text, const QString &detail = QString());

/** Shows @p text in place of the last progress line, where standard error is a terminal. */
void showProgress(const QString &text);

/** Takes the progress line away. */
void clearProgress();

/** How a person answers a question. */
enum class Consent {
    Given,
    Refused,
    NobodyThere, ///< standard input is no terminal, or the question could not be seen
};

/** Asks @p question at the terminal; only "y" and "yes" are a consent. */
Consent askFor(const QString &question);

/**
 * Reads the secret of that @p name: from the terminal, without showing it, where standard input is
 * one; else the next line of standard input. False where there is none, or nobody can be asked.
 */
bool readSecret(const QString &name, QString &secret);

#endif
