"""Median and spread of figures from several rounds."""

import statistics


def summary(values):
    """Returns the median, the lowest and the highest value of one figure."""
    values = list(values)
    return {"median": statistics.median(values), "low": min(values), "high": max(values)}


def ratio(values, references):
    """Returns the summary of a figure's ratio to another figure of the same rounds."""
    return summary(value / reference for value, reference in zip(values, references))


def number(value):
    """Formats a figure with three or four significant digits, without an exponent."""
    size = abs(value)
    places = 0 if size >= 100 else 1 if size >= 10 else 2
    return f"{value:,.{places}f}"


def shown(figure, places=None):
    """Formats a summary, with its spread in brackets."""
    texts = [number(figure[key]) if places is None else f"{figure[key]:,.{places}f}"
             for key in ("median", "low", "high")]
    if texts[1] == texts[2]:
        return texts[0]
    return f"{texts[0]} ({texts[1]} to {texts[2]})"
