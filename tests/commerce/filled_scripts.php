<?php
// Whether account data stayed data: php filled_scripts.php LIST
// Each line of LIST names, parted by tabs, a script filled with harmless values, the same one filled with others, and a
// file with what its text blocks hold then. Outside of its text blocks a script has to be the same in both.

/** The tokens of a script without its text blocks, and the content of these. */
function read_script(string $path): array
{
    $outside = [];
    $blocks = '';
    $inside = false;
    foreach (token_get_all(file_get_contents($path), TOKEN_PARSE) as $token) {
        $kind = is_array($token) ? $token[0] : 0;
        $text = is_array($token) ? $token[1] : $token;
        if ($kind === T_START_HEREDOC || $kind === T_END_HEREDOC) {
            $inside = $kind === T_START_HEREDOC;
            $outside[] = $kind;
        } elseif ($inside) {
            $blocks .= $text;
        } else {
            $outside[] = $text;
        }
    }
    return [$outside, $blocks];
}

foreach (file($argv[1], FILE_IGNORE_NEW_LINES) as $line) {
    [$plain, $filled, $expected] = explode("\t", $line);
    try {
        [$outside] = read_script($plain);
        [$outsideFilled, $blocks] = read_script($filled);
    } catch (ParseError $error) {
        echo $filled, ': ', $error->getMessage(), "\n";
        continue;
    }
    if ($outside !== $outsideFilled) {
        echo $filled, ": data became code\n";
    }
    if ($blocks !== file_get_contents($expected)) {
        echo $filled, ": the data differ from those given\n";
    }
}
