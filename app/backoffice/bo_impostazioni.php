<?php
// The shop's settings and small questions to its database: what pages and remoto.php share, which has no session.
include_once __DIR__ . '/kvcontext.php';
include_once __DIR__ . '/kvdb.php';
include_once __DIR__ . '/kvtables.php';

/** The shop's settings, as they were before the build put a backslash before each quote. */
function boSettings(): array
{
    static $settings = null;
    if ($settings === null) {
        $rows = kvValues(<<<'KORVANE_VALORI'
<<1-bo_username>>
<<1-bo_password>>
<<1-negozio>>
<<1-perl_shopURL>>
KORVANE_VALORI
        );
        $settings = array_combine(['utente', 'password', 'negozio', 'indirizzo'], array_slice($rows, 0, 4));
    }
    return $settings;
}

/** How many rows a query of the form SELECT COUNT(*) AS n counts. */
function boCountRows(string $sql, array $values = []): int
{
    return (int) (kvRiga($sql, $values)['n'] ?? 0);
}
