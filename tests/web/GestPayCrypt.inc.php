<?php
// Stands in for the bank's own component, by the calls that the shop makes: seals an order and opens a notice.
class GestPayCrypt
{
    private $dati = [];
    private $sigillo = '';
    private $chiave = 'chiave della banca';

    public function SetShopLogin(string $valore): void { $this->dati['shop'] = $valore; }
    public function SetCurrency(string $valore): void { $this->dati['currency'] = $valore; }
    public function SetAmount(string $valore): void { $this->dati['amount'] = $valore; }
    public function SetShopTransactionID(string $valore): void { $this->dati['order'] = $valore; }
    public function SetEncryptedString(string $valore): void { $this->sigillo = $valore; }
    public function GetEncryptedString(): string { return $this->sigillo; }
    public function GetCurrency(): string { return $this->dati['currency'] ?? ''; }
    public function GetAmount(): string { return $this->dati['amount'] ?? ''; }
    public function GetShopTransactionID(): string { return $this->dati['order'] ?? ''; }
    public function GetBankTransactionID(): string { return $this->dati['transaction'] ?? ''; }
    public function GetTransactionResult(): string { return $this->dati['result'] ?? ''; }

    public function Encrypt(): bool
    {
        $testo = base64_encode(json_encode($this->dati));
        $this->sigillo = $testo . '.' . hash_hmac('sha256', $testo, $this->chiave);
        return true;
    }

    public function Decrypt(): bool
    {
        $parti = explode('.', $this->sigillo);
        if (count($parti) !== 2 || !hash_equals(hash_hmac('sha256', $parti[0], $this->chiave), $parti[1])) {
            return false;
        }
        $this->dati = json_decode(base64_decode($parti[0]), true) + $this->dati;
        return true;
    }
}
