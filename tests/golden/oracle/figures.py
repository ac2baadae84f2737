"""Number kinds, their roundings and their texts, computed naively: money as a Decimal of four digits after the point, a single as
a float that has been through four bytes."""
import struct
from decimal import ROUND_HALF_EVEN, ROUND_HALF_UP, Decimal

PLACES = Decimal("0.0001")


class Single(float):
    """A number of single precision."""

    def __new__(cls, value):
        return super().__new__(cls, struct.unpack("<f", struct.pack("<f", float(value)))[0])


def money(text_or_number):
    return Decimal(text_or_number).quantize(PLACES, ROUND_HALF_EVEN)


def times(amount, rate):
    """Money by a rate: double, then single, then four decimal places with ties to even."""
    return money(Decimal(Single(float(amount) * float(rate))))


def plain(value):
    """The plain number format, with its space before what isn't negative."""
    return text if (text := trimmed(value)).startswith("-") else " " + text


def trimmed(value):
    if isinstance(value, bool):
        return "1" if value else "0"
    if isinstance(value, int):
        return str(value)
    if isinstance(value, Decimal):
        return _bare(format(value, "f"))
    return _float_text(value, 7 if isinstance(value, Single) else 15)


def _bare(text):
    """No closing zeroes after the point, no zero before it."""
    if "." in text:
        text = text.rstrip("0").rstrip(".")
    sign, digits = ("-", text[1:]) if text.startswith("-") else ("", text)
    if digits.startswith("0."):
        digits = digits[1:]
    return "0" if digits in ("", "0") else sign + digits


def _float_text(value, places):
    mantissa, exponent = format(value, ".%de" % (places - 1)).split("e")
    exponent, digits = int(exponent), len(mantissa.lstrip("-").replace(".", "").rstrip("0"))
    if exponent >= places or (exponent < 0 and digits - 1 - exponent > places):
        return "%sE%s%02d" % (_bare(mantissa), "-" if exponent < 0 else "+", abs(exponent))
    return _bare(format(Decimal(mantissa).scaleb(exponent), "f"))


def masked(value, decimals, grouped):
    """A number with so many decimals, ties away from zero, "." for decimals and "," for thousands. What rounds to
    nothing has no sign."""
    exact = value if isinstance(value, Decimal) else Decimal(format(value, ".15g"))
    rounded = exact.quantize(Decimal(1).scaleb(-decimals), ROUND_HALF_UP)
    rounded = rounded if rounded else abs(rounded)
    return format(rounded, ",f" if grouped else "f")


def hashes(value):
    """A whole number by a mask of "#" alone: nothing for a zero."""
    return "" if not value else str(value)


def rounded2(value):
    """Two decimals, ties to the even digit."""
    return float(Decimal(value).quantize(Decimal("0.01"), ROUND_HALF_EVEN))


def is_numeric(text):
    try:
        Decimal(text.strip().replace(",", "."))
        return True
    except ArithmeticError:
        return False
