"""What a visitor pays, computed apart from the shop's own scripts: from the rows that the merchant typed, in whole
numbers and fractions.

Amounts of the catalogue are whole numbers of ten-thousandths, amounts shown are whole numbers of the smallest unit
shown (cents, or whole units in a shop without decimals). Rates and factors have the precision of an IEEE 754 single.
"""
import struct
from fractions import Fraction

from oracle_shops import PAST_DAYS

MILLION = 1000000


def single(value):
    return struct.unpack("<f", struct.pack("<f", float(value)))[0]


def served(value):
    """A single as the server has it: the database's text gives it seven digits."""
    return single(float(f"{single(value):.7g}"))


def product(amount, rate):
    """Ten-thousandths by a rate: as a double, then as a single, then to four decimals with ties to the even one."""
    return round(Fraction(single(amount / 10000 * rate)) * 10000)


def half_up(value):
    """The nearest whole number, a half upwards."""
    return (2 * value + 1).__floor__() // 2


def half_away(value):
    """The nearest whole number, a half away from zero."""
    return half_up(value) if value >= 0 else -half_up(-value)


def millionths(value):
    return half_up(Fraction(value) * MILLION)


def written(units, decimals, notation):
    """Smallest units in the notation of the shop: 0 is 1.000,00 and 1 is 1,000.00."""
    text = f"{units / 100:,.2f}" if decimals else f"{units:,d}"
    return text if notation == 1 else text.translate(str.maketrans(",.", ".,"))


class Rules:
    """The settings of a shop as its visitors meet them."""

    def __init__(self, shop):
        self.shop = shop
        self.scale = 100 if shop.decimals else 1
        discount = shop.discount if 0 <= shop.discount <= 100 else 0
        self.shop_factor = single((100 - discount) / 100)

    def shown(self, amount):
        return half_away(Fraction(amount * self.scale, 10000))

    def text(self, units):
        return self.shop.label + " " + written(units, self.shop.decimals, self.shop.notation)

    def second_text(self, amount):
        """An exact amount of the first currency in the second one."""
        units = half_away(Fraction(amount) / Fraction(self.shop.exchange) * (100 if self.shop.decimals2 else 1))
        return self.shop.label2 + " " + written(units, self.shop.decimals2, self.shop.notation)

    @staticmethod
    def vat_rate(department):
        return served(single(department.vat) / 100)

    def factor(self, department, listino):
        percent = department.discounts[listino]
        return served(self.shop_factor if percent is None else (100 - single(percent)) / 100 * self.shop_factor)

    def with_vat(self, amount, department):
        return amount + product(amount, self.vat_rate(department)) if self.shop.vat_included else amount

    def on_offer(self, article, listino):
        """An offer at the list price is one where there is a discount that it doesn't take."""
        return article.offers[listino] and (article.offer_prices[listino] != article.prices[listino]
                                            or self.factor(article.department, listino) != 1)

    def list_price(self, article, listino):
        return self.with_vat(article.prices[listino], article.department)

    def asked_price(self, article, listino):
        """The price of the article without any choice, ten-thousandths. Offers take no discount of the department."""
        if self.on_offer(article, listino):
            return self.with_vat(article.offer_prices[listino], article.department)
        factor = self.factor(article.department, listino)
        price = article.prices[listino]
        return self.with_vat(price if factor == 1 else product(price, factor), article.department)

    def unit_text(self, article, listino):
        """The price of one unit of the content, from the price as it is shown; None without a content."""
        if not article.content:
            return None
        content, measure = article.content
        units = half_up(Fraction(self.shown(self.asked_price(article, listino)) * 10000, content))
        return self.text(units) + " / " + {"pz": "pezzo"}.get(measure, measure)

    def lowest_text(self, article, listino):
        """The lowest price before a reduction in words; None without a reduction or an earlier price."""
        if not article.past or self.asked_price(article, listino) >= self.list_price(article, listino):
            return None
        lowest = self.with_vat(min(article.past[listino]), article.department)
        return f"Prezzo più basso nei {PAST_DAYS} giorni prima della riduzione: {self.text(self.shown(lowest))}"

    def is_reduced(self, article, listino):
        return self.on_offer(article, listino) or self.factor(article.department, listino) != 1

    def difference(self, article, listino, value):
        """What a value of a variant adds to the price shown. The build writes differences with the decimals shown."""
        amount = self.shown(value.price) * (10000 // self.scale)
        factor = self.factor(article.department, listino)
        if factor != 1 and not self.on_offer(article, listino):
            amount = product(amount, factor)
        return self.shown(self.with_vat(amount, article.department))

    def piece(self, line, listino):
        """The price of one piece of a line: choices and quantity discount counted in."""
        article = line.article
        price = self.shown(self.asked_price(article, listino))
        price += sum(self.difference(article, listino, value) for value in line.chosen.values())
        factor = MILLION
        if article.quantity_discount[listino]:
            steps = sorted(zip(article.quantities, article.percents))
            for quantity, percent in steps:
                if 0 < quantity <= line.pieces:
                    factor = millionths((100 - Fraction(single(percent))) / 100)
        return half_up(Fraction(max(0, price) * factor, MILLION))

    def order_factor(self, goods, listino, personal):
        """The discount of the whole order in millionths: the customer's own, else the one above an amount."""
        if personal > 0:
            return MILLION - millionths(Fraction(personal) / 100)
        if goods * (10000 // self.scale) > self.shop.thresholds[listino]:
            return millionths((100 - Fraction(single(self.shop.percents[listino]))) / 100)
        return MILLION

    def shipping(self, method, zone, goods, weight):
        """The cost of shipping by one of the shop's methods: by the goods less discount, or by the weight."""
        row = self.shop.zones[zone][method]
        if self.shop.by_weight:
            steps, measure = sorted(zip(row.weights, row.weight_costs), key=lambda step: step[0]), weight
            beyond = row.weight_costs[-1]
        else:
            steps, measure = sorted(zip(row.amounts, row.costs), key=lambda step: step[0]), goods * 10000 // self.scale
            beyond = row.costs[-1]
        cost = next((cost for limit, cost in steps if measure <= limit), beyond)
        if self.shop.vat_included:
            cost = product(cost, single(1 + single(single(self.shop.shipping_vat) / 100)))
        return self.shown(cost)

    def vat_inside(self, case, factor):
        """The VAT that the prices of an order hold, its discount taken off: by rate, each rounded."""
        goods = {}
        for line in case.lines:
            rate = Fraction(millionths(Fraction(self.vat_rate(line.article.department))), MILLION)
            goods[rate] = goods.get(rate, 0) + self.piece(line, case.listino) * line.pieces
        return sum(half_up(half_up(Fraction(amount * factor, MILLION)) * rate / (1 + rate))
                   for rate, amount in goods.items())

    def totals(self, case):
        """The totals of an order, in the names that the shop's data give them."""
        goods, vat, weight = 0, 0, 0
        for line in case.lines:
            amount = self.piece(line, case.listino) * line.pieces
            goods += amount
            weight += line.weight() * line.pieces
            if not self.shop.vat_included:
                vat += amount * millionths(Fraction(self.vat_rate(line.article.department)))
        factor = self.order_factor(goods, case.listino, case.personal)
        discount = half_up(Fraction(goods * (MILLION - factor), MILLION))
        shipping = self.shipping(case.method, case.zone, goods - discount, weight)
        taxed = self.shop.zone_vat[case.zone] and not self.shop.vat_included
        net = self.shop.vat_included and not self.shop.zone_vat[case.zone]
        totals = {
            "merce": goods,
            "sconto": discount,
            "iva": half_up(Fraction(vat * factor, MILLION * MILLION)) if taxed else 0,
            "spese": shipping,
            "ivaspese": half_up(Fraction(shipping) * Fraction(self.shop.shipping_vat) / 100) if taxed else 0,
        }
        if net:
            totals["iva"] = -self.vat_inside(case, factor)
            rate = Fraction(millionths(Fraction(single(self.shop.shipping_vat)) / 100), MILLION)
            totals["ivaspese"] = -half_up(shipping * rate / (1 + rate))
        totals["totale"] = goods - discount + totals["iva"] + shipping + totals["ivaspese"]
        return totals
