"""Carrying out the orders that people and tests give to an emulated modem."""


def obey(orders, modem, words):
    """Carries out one of `orders`, which are functions by their names; returns "ok" or what is wrong."""
    name, *arguments = words
    try:
        if name not in orders:
            return f"error: no such order: {name}"
        orders[name](modem, *arguments)
    except (TypeError, ValueError) as error:
        return f"error: {error}"
    return "ok"
