"""The one failure of this program that is shown to its user."""


class HostError(Exception):
    """Its text is one line that says what to do."""
