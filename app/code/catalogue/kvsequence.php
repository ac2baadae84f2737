<?php
// ***1.0.7***
// Words with nothing but marks between them, as in "l'olio" or "GR-7/B": each two of them are a sequence,
// which has a set of articles as a word has (kvset.php). So a request of two such words is answered by the index as well,
// and for one of more few texts are read.
// The index has a sequence as the marks and the second word, KV_SEQUENCE_END, and the first word. What a request asks
// for is then the beginning of a key. kv_sequenze names each once.

/** The rank of sequences, beside those of words. */
const KV_SEQUENCE_RANK = 3;
/** Most characters of a word in a sequence, the nearest to its marks; most marks between two words. */
const KV_SEQUENCE_WORD = 20;
const KV_SEQUENCE_MARKS = 4;
/** A no-break space: no sequence has it, and the server orders it after the spaces by which it compares keys. */
const KV_SEQUENCE_END = "\u{A0}";
/** Words with marks between them, and what parts them, as patterns. */
const KV_SEQUENCE_PATTERN = '[\p{L}\p{N}\p{M}]++(?:[^\p{L}\p{N}\p{M}\s]{1,' . KV_SEQUENCE_MARKS . '}+[\p{L}\p{N}\p{M}]++)++';
const KV_SEQUENCE_SPLIT = '/([^\p{L}\p{N}\p{M}]+)/u';

/** The names of the sequences in a folded text: rank and sequence in one. */
function kvSequences(string $text): array
{
    $names = [];
    preg_match_all('/' . KV_SEQUENCE_PATTERN . '/u', $text, $found);
    foreach ($found[0] as $run) {
        $pieces = preg_split(KV_SEQUENCE_SPLIT, $run, -1, PREG_SPLIT_DELIM_CAPTURE);
        for ($n = 0; $n + 2 < count($pieces); $n += 2) {
            $names[] = KV_SEQUENCE_RANK . $pieces[$n + 1] . kvCut($pieces[$n + 2], KV_SEQUENCE_WORD) . KV_SEQUENCE_END
                . kvLastCharacters($pieces[$n], KV_SEQUENCE_WORD);
        }
    }
    return $names;
}

/** The last characters of an UTF-8 text. */
function kvLastCharacters(string $text, int $most): string
{
    return strlen($text) <= $most || preg_match('/.{0,' . $most . '}$/usD', $text, $end) !== 1 ? $text : $end[0];
}

/** The words of a request word with marks and the marks between them, one after the other; empty where no sequence says it. */
function kvSequencePieces(string $word): array
{
    $text = kvFold(kvUtf8($word));
    $pieces = preg_match('/^' . KV_SEQUENCE_PATTERN . '$/uD', $text)
        ? preg_split(KV_SEQUENCE_SPLIT, $text, -1, PREG_SPLIT_DELIM_CAPTURE) : [];
    // A longer word is cut in the index.
    return $pieces === [] || max(array_map('kvLength', $pieces)) >= KV_SEQUENCE_WORD ? [] : $pieces;
}

/** Whether the articles that have a request word are those of one sequence. */
function kvIsSequence(string $word): bool
{
    return count(kvSequencePieces($word)) === 3;
}

/**
 * The articles that have all sequences of a request word, as they are where `whole`, else the ends of the word may be in
 * longer words. Null when the server refused it, all bits where no sequence says the word.
 */
function kvSequenceSet(string $word, bool $whole, int $length): ?string
{
    $language = $GLOBALS['Lingua'];
    $bits = str_repeat("\xFF", $length);
    $pieces = kvSequencePieces($word);
    for ($n = 0; $n + 2 < count($pieces); $n += 2) {
        $pattern = addcslashes($pieces[$n + 1] . $pieces[$n + 2], '%_\\') . ($whole || $n + 3 < count($pieces) ? '' : '%')
            . KV_SEQUENCE_END . ($whole || $n > 0 ? '' : '%') . $pieces[$n];
        $sets = kvSetsByPoints("SELECT STRAIGHT_JOIN i.parola, rango, quanti, insieme FROM kv_sequenze$language w INNER JOIN"
            . " kv_insiemi$language i ON i.parola = w.parola WHERE w.parola LIKE ?", [$pattern], fn(): int => 0, $length);
        if ($sets === null) {
            return null;
        }
        $bits = $sets === [] ? str_repeat("\0", $length) : $bits & $sets[0];
    }
    return $bits;
}
