"""A board's daemons without its hardware: real programs in a folder of their own, for tests and to play with."""
