"""The two pools of a language: the pages and resources, and the scripts, with their references marked."""
from shop import is_model, listing
from tags import replace_string
from texts import can_copy, is_page, like
from txtar import from_cp1252, to_cp1252

SCRIPTS = ("*.js", "*.pl", "*.asp", "*.php")


def make_pools(shop, code):
    """(template pool, code pool), name -> bytes."""
    package, names = shop.package(), []
    names += [name for name in listing(package) if is_page(name) and not is_model(name)]
    names += [name for name in listing(package) if can_copy(name)]
    pages = dict(package)
    for name in listing(shop.package_of(code)):
        pages[name] = shop.package_of(code)[name]
        if not is_model(name) and name not in names:
            names.append(name)
    scripts = {}
    for folder in ("code", "shopcode"):
        for pattern in SCRIPTS:
            for name in listing(shop.files[folder]):
                if "/" not in name and like(name, pattern):
                    scripts[name] = shop.files[folder][name]
                    names.append(name)
    for pool, chosen in ((pages, [name for name in pages if is_page(name)]), (scripts, list(scripts))):
        for name in chosen:
            text = from_cp1252(pool[name])
            for reference in names:
                text = replace_string(text, reference)
            pool[name] = to_cp1252(text)
    return pages, scripts
