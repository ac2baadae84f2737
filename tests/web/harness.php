<?php
// What the tests in plain PHP share: every notice is a failure, the shop's scripts are taken from the folder of
// expanded scripts that the first argument names (sample_shop.py makes it), and a run prints what failed.

error_reporting(E_ALL);
set_error_handler(function (int $kind, string $what, string $file, int $line): bool {
    if (!(error_reporting() & $kind)) {
        return false;
    }
    throw new ErrorException($what, 0, $kind, $file, $line);
});

/** Includes scripts of the shop, by their names without ".php". */
function shopScripts(array $names): void
{
    $folder = $GLOBALS['argv'][1] ?? '';
    if (!is_file("$folder/kvdb.php")) {
        fwrite(STDERR, "usage: {$GLOBALS['argv'][0]} FOLDER\n");
        exit(2);
    }
    chdir($folder);
    foreach ($names as $name) {
        include_once "$folder/$name.php";
    }
}

/** The settings that funcs.php takes from the build, as a shop has them that shows two decimals and VAT included. */
function shopSettings(): void
{
    foreach (['ivacompresa' => 1, 'visdec' => [1, 0, 2], 'vissconto' => 1, 'valuta' => ['EUR ', 'Lit. '], 'cambio' => 0,
              'notazione' => 0, 'regobbl' => 0, 'regpr' => 0, 'subtitleincart' => 0, 'visnovita' => '',
              'visofferta' => '<img src="kvan_offerta.gif">', 'Lingua' => '', 'cliente' => 0, 'listino' => 0,
              'scontocliente' => 0, 'clienteinattesa' => 0, 'scontorep' => array_fill(0, 10, 1.0), 'ivarep' => 0.22,
              'inaccessibile' => array_fill(0, 10, 0), 'rowArt' => [],
              'kvLegalRows' => ['kv_unita' => null, 'kv_minimi' => null, 'kv_sicurezza' => null, 'kv_produttori' => null,
                  'kv_consegna' => null]] as $name => $value) {
        $GLOBALS[$name] = $value;
    }
}

/** Runs tests, name => function that answers [wanted, found]; prints the failures and ends with the status. */
function runTests(array $tests): void
{
    $failed = 0;
    foreach ($tests as $name => $test) {
        shopSettings();
        try {
            list($wanted, $found) = $test();
            if ($wanted === $found) {
                continue;
            }
            $text = 'wanted ' . var_export($wanted, true) . "\n  found " . var_export($found, true);
        } catch (Throwable $error) {
            $text = get_class($error) . ': ' . $error->getMessage() . ' at ' . basename($error->getFile()) . ':'
                . $error->getLine();
        }
        echo "FAILED $name\n  $text\n";
        $failed++;
    }
    echo count($tests) - $failed, ' of ', count($tests), " tests passed\n";
    exit($failed === 0 ? 0 : 1);
}
