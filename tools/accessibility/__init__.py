"""The parts of tools/check-accessibility."""
