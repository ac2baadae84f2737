"""The one failure of this program that a user is told."""


class HostError(Exception):
    """Its text is one line that says what to do."""
