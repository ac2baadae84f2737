<?php
// ***1.0.7***
// Sets of articles as texts of bits: bit p % 8 of byte p / 8 is the article at position p in the order of titles. The index
// of words has one of each word, so that articles which have several words are found, counted and put in their order
// without a row of them being read. kv_insiemi keeps a set in the shorter of two forms: its bits, or a list of positions
// of four bytes each (the lower byte first).
// A list takes longer to be read than bits, so it must be much the shorter one.
// Besides words kv_insiemi has KV_DEPARTMENT with a number, the articles of that department, and KV_LATE, those whose title
// has come or changed since the positions were given: they are not where their titles belong.

/** What comes before the number of a department, in the position of a word: no word has this character. */
const KV_DEPARTMENT = '/';
const KV_LATE = '*';

/** The word that stands for a department, whose number may hold any character. */
function kvDepartmentWord(string $department): string
{
    return KV_DEPARTMENT . md5(kvFold(kvUtf8($department)));
}

/** How many members a set has. */
function kvSetCount(string $bits): int
{
    $count = 0;
    foreach (count_chars($bits, 1) as $byte => $times) {
        for (; $byte > 0; $byte &= $byte - 1) {
            $count += $times;
        }
    }
    return $count;
}

/** The set with more positions in it; it must be long enough for them. */
function kvWithPositions(string $bits, array $positions): string
{
    $masks = ["\x01", "\x02", "\x04", "\x08", "\x10", "\x20", "\x40", "\x80"];
    foreach ($positions as $position) {
        $bits[$position >> 3] = $bits[$position >> 3] | $masks[$position & 7];
    }
    return $bits;
}

/** The set of some positions, no longer than they need. */
function kvSetOf(array $positions): string
{
    return $positions === [] ? '' : kvWithPositions(str_repeat("\0", (max($positions) >> 3) + 1), $positions);
}

/** The positions of a set in their order, the first ones of at least so many. */
function kvPositions(string $bits, int $most = PHP_INT_MAX): array
{
    $positions = [];
    $length = strlen($bits);
    for ($at = strspn($bits, "\0"); $at < $length && count($positions) < $most; $at += 1 + strspn($bits, "\0", $at + 1)) {
        for ($byte = ord($bits[$at]), $position = 8 * $at; $byte > 0; $byte >>= 1, $position++) {
            if ($byte & 1) {
                $positions[] = $position;
            }
        }
    }
    return $positions;
}

/** A list is kept where its positions take less than one of so many parts of the bits. */
const KV_LIST_SHARE = 4;

/** Whether a stored set is a list: bits that would be of its length are kept as one. */
function kvIsList(int $count, string $stored): bool
{
    return strlen($stored) === 4 * $count;
}

/** The bits of a stored set, so many bytes. */
function kvStoredBits(int $count, string $stored, int $length): string
{
    return kvIsList($count, $stored) ? kvWithPositions(str_repeat("\0", $length), unpack('V*', $stored))
        : str_pad($stored, $length, "\0");
}

/** A set as it is stored, after the number of its members. */
function kvSetToStore(string $bits): array
{
    $count = kvSetCount($bits);
    $bits = rtrim($bits, "\0");
    $isList = 4 * $count * KV_LIST_SHARE <= strlen($bits) || 4 * $count === strlen($bits);
    return [$count, $isList ? pack('V*', ...kvPositions($bits)) : $bits];
}

/**
 * Sets that a SELECT of parola, rango, quanti and insieme gives, put together by the points that each word and rank has; a
 * member is in that of its least points alone. Null when the server refused it.
 */
function kvSetsByPoints(string $sql, array $values, callable $points, int $length): ?array
{
    $empty = str_repeat("\0", $length);
    $sets = $lists = [];
    $rows = kvQuery($sql, $values);
    foreach ($rows ?? [] as $row) {
        $number = $points((string) $row['parola'], (int) $row['rango']);
        if (kvIsList((int) $row['quanti'], $row['insieme'])) {
            $lists[$number] = ($lists[$number] ?? '') . $row['insieme'];
        } else {
            $sets[$number] = ($sets[$number] ?? $empty) | $row['insieme'];
        }
    }
    foreach ($lists as $number => $list) {
        $sets[$number] = kvWithPositions($sets[$number] ?? $empty, unpack('V*', $list));
    }
    ksort($sets);
    $before = $empty;
    foreach ($sets as $number => $bits) {
        $sets[$number] = $bits & ~$before;
        $before |= $bits;
    }
    return $rows === null ? null : $sets;
}

/**
 * What a request finds, by points: of each of its parts the sets by points, which are added up. Where any part is enough,
 * those that have more of the parts come first.
 */
function kvJoinParts(array $parts, bool $all, int $length): array
{
    $found = [0 => str_repeat("\xFF", $length)];
    foreach ($parts as $sets) {
        $next = [];
        foreach ($found as $points => $bits) {
            foreach ($sets as $more => $set) {
                $sum = $points + $more - ($all ? 0 : 100);
                $both = $bits & $set;
                $next[$sum] = isset($next[$sum]) ? $next[$sum] | $both : $both;
                $bits = $all ? $bits : $bits & ~$set;
            }
            if (!$all) {
                $next[$points] = isset($next[$points]) ? $next[$points] | $bits : $bits;
            }
        }
        $found = array_filter($next, fn($bits) => trim($bits, "\0") !== '');
    }
    if (!$all && $parts !== []) {
        unset($found[0]);
    }
    ksort($found);
    return $found;
}

/** What a request has found: sets by points, the best first, and those in them that are not where their titles belong. */
final class KvFound
{
    /** @var string[] */
    public $sets;
    /** @var string */
    public $late;
    /** @var int */
    public $count;
    /** @var bool Whether texts were read for it, which takes long. */
    public $wereTextsRead;

    public function __construct(array $sets, string $late, bool $wereTextsRead = false)
    {
        $this->sets = $sets;
        $this->late = $late;
        $this->wereTextsRead = $wereTextsRead;
        $this->count = array_sum(array_map('kvSetCount', $sets));
    }

    /**
     * The positions from which so many articles after the first `after` are chosen: of each set that they are in its
     * positions, how many of those come before, and how many are wanted.
     */
    public function positions(int $count, int $after): array
    {
        $chosen = [];
        foreach ($this->sets as $bits) {
            $size = kvSetCount($bits);
            if ($after < $size && $count > 0) {
                $wanted = min($count, $size - $after);
                $late = kvPositions($bits & $this->late);
                $inOrder = array_slice(kvPositions($bits & ~$this->late, $after + $wanted), 0, $after + $wanted);
                // Without late ones each is where it belongs: those before needn't be read.
                $chosen[] = $late === [] ? [array_slice($inOrder, $after), 0, $wanted]
                    : [array_merge($inOrder, $late), $after, $wanted];
                $count -= $wanted;
            }
            $after = max(0, $after - $size);
        }
        return $chosen;
    }

    /** The numbers of so many articles after the first `after`, in their order. */
    public function numbers(int $count, int $after): array
    {
        $chosen = $this->positions($count, $after);
        $all = $chosen === [] ? [] : array_merge(...array_column($chosen, 0));
        // The same order, but that of the positions the server reads from their key alone.
        $order = trim($this->late, "\0") === '' ? 'posizione' : 'titolo, articolo';
        $rows = $all === [] ? [] : kvDirectRows("SELECT posizione, articolo FROM kv_voci{$GLOBALS['Lingua']} WHERE posizione IN ("
            . implode(',', $all) . ") ORDER BY $order");
        $numbers = array_column($rows, 'articolo', 'posizione');
        $found = [];
        foreach ($chosen as list($positions, $before, $wanted)) {
            $ordered = array_intersect_key($numbers, array_flip($positions));
            $found[] = array_slice(array_values($ordered), $before, $wanted);
        }
        return $found === [] ? [] : array_map('intval', array_merge(...$found));
    }
}
