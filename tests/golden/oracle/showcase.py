"""The showcase table of a language."""

VET_OFFERTA = [
    "<?php", "function VetOfferta($aid) {", "global $rowArt, $Lingua;",
    '$sql = "SELECT * FROM articoli$Lingua INNER JOIN dettaglio USING (ID) INNER JOIN ordinamento USING (ID) '
    'WHERE articoli$Lingua.ID=$aid";',
    "$resultArt = mysql_query($sql);", "$rowArt = mysql_fetch_array($resultArt);", '$catid = $rowArt["catID"];',
    "SetVariables($catid);", "$Out = ViewOfferta();", "return $Out;", "}", "?>"]


def showcase(settings, cells):
    if not cells:
        return ""
    columns = settings["colonnevetrina"] or 0
    columns = 3 if columns < 1 else min(columns, 10)
    text = '<div align="center"><center><table border="0" cellpadding="4" cellspacing="0">\r\n'
    for start in range(0, len(cells), columns):
        text += "<tr>\r\n"
        for cell in cells[start:start + columns]:
            text += '<td valign="top" align="%s" width="%d%%">\r\n' % (settings.text("vetalign"), 100 // columns)
            text += '<font size="%s">\r\n' % settings.text("vetsize") + cell + "</font></td>\r\n"
        text += "</tr>\r\n"
    text += "</table></center></div>\r\n"
    if "VetOfferta(" in text:
        text += "\r\n".join(VET_OFFERTA)
    return text
