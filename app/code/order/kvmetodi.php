<?php
// ***1.0.7***
// The payment methods of a language, as the build writes them: a select. Of use to whoever wants their names in another
// language than that of the page.
if (!function_exists('kvSelectOptions')) {
    exit;
}
return <<<'KORVANE_VALORI'
<<1-pagamento>>
KORVANE_VALORI;
