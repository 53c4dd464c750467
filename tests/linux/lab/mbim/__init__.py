"""An emulated MBIM modem with two SIM slots, a process of its own."""
