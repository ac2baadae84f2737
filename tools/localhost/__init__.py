"""The parts of tools/local-host, one module per server; nothing here needs more than Python's own library."""
