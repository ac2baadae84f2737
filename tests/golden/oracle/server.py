"""What the scripts on the server are given: the settings block, Perl texts and the mail as program text."""
import re

from article import LISTINI, typed
from figures import Single, money, plain, trimmed
from images import crea_tag_img

CRLF = "\r\n"
MAIL_TAGS = [("<<importo>>", '" . $mail_valuta . $totale_lordo . "', '".$mail_valuta.$FORM{\'Totale_Ordine\'}."'),
             ("<<codice>>", '" . $codice . "', '".$FORM{\'Codice_Ordine\'}."'),
             ("<<riepilogo>>", '" . $riepilogo . "', '".$FORM{\'Riepilogo\'}."')]


def make_perl(text):
    return text.replace("@", "\\@").replace('"', "'")


def crea_mail(text, php):
    if text == "":
        return ""
    text = (text if php else make_perl(text)).replace('"', '\\"')
    lines = text.split(CRLF)
    lines = lines[:-1] if lines[-1] == "" else lines
    code = CRLF
    for line in lines:
        for tag, php_form, perl_form in MAIL_TAGS:
            line = re.sub(tag, lambda found: php_form if php else perl_form, line, flags=re.I)
        code += '$info .= "' + line + ('\\r\\n";' if php else '\\n";') + CRLF
    return code


def image_word(run, name):
    return crea_tag_img(name, run.package.get(name)).replace('"', '\\"')


def amount_factor(percent, shop_factor):
    return shop_factor if percent is None else Single((100 - typed(percent)) / 100 * shop_factor)


def settings_block(run, settings):
    """php_globals."""
    def flag(name):
        return 1 if settings[name] else 0

    labels, places = run.currency.labels, run.currency.places
    lines = ["$ivacompresa = %d;" % flag("ivacompresa"),
             "$visdec = array(%d,%d, 2);" % (flag("decimali1"), flag("decimali2")),
             "$vissconto = %d;" % flag("vis_sconto"), '$valuta = array("%s","%s");' % tuple(labels),
             "$cambio = " + (plain(settings["cambio"] or 0) if settings["usa_cambio"] else "0") + ";",
             "$notazione = %d;" % (settings["notazione"] or 0), "$regobbl = %d;" % flag("regobbl")]
    lines += ["$regpr = 1;"] if settings["regprices"] else []
    lines += ["$subtitleincart = 1;"] if settings["subtitleincart"] else []
    lines += ['$visofferta = "%s";' % (image_word(run, "kvan_offerta.gif") if settings["vis_offerta"] else ""),
              '$visnovita = "%s";' % image_word(run, "kvan_novita.gif"),
              "$scontoperc = array(%s);" % ",".join(
                  trimmed(amount_factor(settings["scimp" + n], run.shop_factor)) for n in LISTINI),
              "$scontoimp = array(%s);" % ",".join(trimmed(settings["importo" + n] or money(0)) for n in LISTINI)]
    return "".join(line + CRLF for line in lines)


def server_columns(run):
    settings = run.settings
    return {"php_globals": run.php_globals, "perl_shopname": make_perl(settings.text("titolo")),
            "perl_email": make_perl(settings.text("email_ordini")),
            "perl_mailend": make_perl(settings.text("firma_email")),
            "testo_email": crea_mail(settings.text("testo_email"), True),
            "perl_testo_email": crea_mail(settings.text("testo_email"), False)}
