"""A modem that exists only as a process: it answers AT commands on sockets or terminals."""
